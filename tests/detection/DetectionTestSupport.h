#pragma once

#include "detection/ProcessSnapshot.h"

#include <QDir>

namespace brenvik::test {

inline ObservedProcess row(qint64 pid, qint64 ppid, const char16_t* command, double cpu = 0,
                           double time = 0, const char16_t* state = u"S") {
    return {pid, ppid, QString::fromUtf16(state), cpu, time, QString::fromUtf16(command)};
}

// A QTemporaryDir template inside the test's private scratch folder.
inline QString scratchTemplate(const char* name) {
    return qEnvironmentVariable("BRENVIK_TEST_SCRATCH", QDir::tempPath()) + u'/' +
           QString::fromLatin1(name) + QStringLiteral("-XXXXXX");
}

} // namespace brenvik::test
