#pragma once

#include "monitor/ProcessMonitoring.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

namespace brenvik {

// What brenvik-status reports about one moment of the monitor, taken after a
// refresh has ended.
struct StatusReport {
    CodexRunState state = CodexRunState::idle();
    QString summary;
    QList<ProcessMatch> matches;
    std::optional<QDateTime> updated;

    [[nodiscard]] static StatusReport of(const CodexProcessMonitor& monitor);
};

// The detail line alone, as status bars show it. No line break.
[[nodiscard]] QString statusLine(const StatusReport& report);

// The detail line, then one aligned row per group under a heading: PID,
// status, member count and the command as the control panel shortens it.
// Every line ends with a line break.
[[nodiscard]] QString statusText(const StatusReport& report);

// One compact JSON object with its keys in a fixed order. No line break.
[[nodiscard]] QString statusJson(const StatusReport& report);

// ISO 8601 to the second with the UTC offset spelled out ("+01:00").
[[nodiscard]] QString isoTimestamp(const QDateTime& time);

} // namespace brenvik
