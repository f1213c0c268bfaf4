#pragma once

#include "detection/ProcessSnapshot.h"
#include "detection/ProcessTree.h"

#include <QDir>

namespace brenvik {

// Readable failures: what a session row says.
inline void PrintTo(const DetectedProcessSample& s, std::ostream* out) {
    *out << "{pid " << s.pid << ", " << s.command.toStdString() << ", cpu " << s.totalCPUPercent
         << "%/" << s.cumulativeCPUTime << "s" << (s.hasHotState ? ", hot" : "") << ", members "
         << s.memberCount << ", processes " << s.processCount << ", cwd '" << s.cwd.toStdString()
         << "'" << (s.interactive ? ", TUI" : "") << ", commands " << s.runningCommands << "}";
}

} // namespace brenvik

namespace brenvik::test {

inline ObservedProcess row(qint64 pid, qint64 ppid, const char16_t* command, double cpu = 0,
                           double time = 0, const char16_t* state = u"S") {
    ObservedProcess process;
    process.pid = pid;
    process.ppid = ppid;
    process.state = QString::fromUtf16(state);
    process.cpuPercent = cpu;
    process.cpuTime = time;
    process.command = QString::fromUtf16(command);
    return process;
}

// A session as the monitor gets it: its root, the tree's CPU, whether a member
// is in a hot state, its Codex members and all its processes.
inline DetectedProcessSample session(qint64 pid, QString command, double cpuPercent, double cpuTime,
                                     bool hot = false, qint64 members = 1, qint64 processes = 1) {
    DetectedProcessSample s;
    s.pid = pid;
    s.command = std::move(command);
    s.totalCPUPercent = cpuPercent;
    s.cumulativeCPUTime = cpuTime;
    s.hasHotState = hot;
    s.memberCount = members;
    s.processCount = processes;
    return s;
}

// A QTemporaryDir template inside the test's private scratch folder.
inline QString scratchTemplate(const char* name) {
    return qEnvironmentVariable("BRENVIK_TEST_SCRATCH", QDir::tempPath()) + u'/' +
           QString::fromLatin1(name) + QStringLiteral("-XXXXXX");
}

} // namespace brenvik::test
