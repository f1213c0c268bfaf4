#pragma once

#include "monitor/ProcessMonitoring.h"

namespace brenvik::test {

// A session as most tests need one: its PID, its status and its project.
inline ProcessMatch match(qint64 pid, ProcessActivityStatus status, QString cwd = {}) {
    ProcessMatch match;
    match.pid = pid;
    match.status = status;
    match.cwd = std::move(cwd);
    return match;
}

} // namespace brenvik::test
