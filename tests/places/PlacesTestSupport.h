#pragma once

#include "places/ProcessAncestry.h"

namespace brenvik::test {

// A process as its ancestry shows it: comm, argv and owner.
inline AncestorProcess process(qint64 pid, qint64 ppid, QString name = QStringLiteral("bash"),
                               QStringList arguments = {}, qint64 uid = 1000) {
    return {.pid = pid,
            .ppid = ppid,
            .name = std::move(name),
            .arguments = std::move(arguments),
            .uid = uid};
}

} // namespace brenvik::test
