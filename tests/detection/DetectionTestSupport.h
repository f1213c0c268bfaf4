#pragma once

// Shared by the detection and session-log tests: process rows, scratch
// folders (a fake /proc among them) and fuzz inputs.
#include "detection/ProcessSnapshot.h"
#include "detection/ProcessTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <span>

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
    return {pid,       std::move(command), cpuPercent,   cpuTime, hot, members,
            processes, QString(),          std::nullopt, false,   0,   QList<qint64>()};
}

inline QHash<qint64, ObservedProcess> byPID(const QList<ObservedProcess>& rows) {
    QHash<qint64, ObservedProcess> map;
    for (const auto& row : rows)
        map.insert(row.pid, row);
    return map;
}

// The commands of a snapshot's rows, one a line, or "domain code: message"
// for its error.
template <typename Snapshot> QString commandsOf(Snapshot snapshot) {
    try {
        QStringList commands;
        for (const auto& row : snapshot())
            commands.append(row.command);
        return commands.join(u'\n');
    } catch (const ProcessSnapshotError& error) {
        return QStringLiteral("%1 %2: %3")
            .arg(error.domain())
            .arg(error.code())
            .arg(QString::fromUtf8(error.what()));
    }
}

// A private folder inside the test's scratch folder, removed with the test.
class ScratchDir {
public:
    explicit ScratchDir(const char* name)
        : m_dir(qEnvironmentVariable("BRENVIK_TEST_SCRATCH", QDir::tempPath()) + u'/' +
                QString::fromLatin1(name) + QStringLiteral("-XXXXXX")) {}

    [[nodiscard]] QString path(const QString& relative = {}) const {
        return relative.isEmpty() ? m_dir.path() : m_dir.filePath(relative);
    }
    // A file of a process in a fake /proc.
    [[nodiscard]] QString path(qint64 pid, const char* file) const {
        return path(QStringLiteral("%1/%2").arg(pid).arg(QLatin1StringView(file)));
    }
    // Writes the file anew, or appends to it, making its folders.
    QString write(const QString& file, const QByteArray& bytes, bool append = false) const {
        QDir().mkpath(QFileInfo(file).path());
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly | (append ? QIODevice::Append : QIODevice::Truncate)) ||
            out.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(file));
        return file;
    }
    void link(const QString& target, const QString& file) const {
        QDir().mkpath(QFileInfo(file).path());
        if (!QFile::link(target, file))
            qFatal("cannot link %s", qPrintable(file));
    }

private:
    QTemporaryDir m_dir;
};

// Runs the check on fuzz inputs: every other one arbitrary bytes, the rest a
// seed with a few bytes replaced, inserted, removed or cut off, mostly by
// bytes of the alphabet, which the parser takes for structure. The
// sanitizers of the test build turn any out-of-bounds read into a failure.
inline void fuzz(std::span<const QByteArray> seeds, const char* alphabet, int inputs,
                 const std::function<void(const QByteArray&, int)>& check) {
    std::mt19937 random(20261123);
    const auto below = [&](qsizetype n) { return int(random() % quint64(n)); };
    for (int i = 0; i < inputs && !::testing::Test::HasFatalFailure(); ++i) {
        QByteArray input = seeds[below(qsizetype(seeds.size()))];
        if (i % 2 == 0) {
            input.resize(below(96));
            for (char& c : input)
                c = char(below(256));
        }
        for (int edits = 1 + below(6); i % 2 == 1 && edits > 0 && !input.isEmpty(); --edits) {
            const int at = below(input.size());
            const char byte = char(i % 3 == 0 ? below(256) : alphabet[below(qstrlen(alphabet))]);
            const int edit = below(4);
            if (edit == 0)
                input[at] = byte;
            else if (edit == 1)
                input.insert(at, byte);
            else if (edit == 2)
                input.remove(at, 1 + below(4));
            else
                input.truncate(at);
        }
        check(input, i);
    }
}

} // namespace brenvik::test
