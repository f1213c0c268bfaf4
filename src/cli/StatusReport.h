#pragma once

#include "monitor/ProcessMonitoring.h"
#include "places/SessionPlace.h"
#include "places/SessionPlaces.h"

#include <QDateTime>
#include <QHash>
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
    // By root PID; a session without one has no known place.
    QHash<qint64, SessionPlace> places = {};

    // With `places`, the place of each session where one was found.
    [[nodiscard]] static StatusReport of(const CodexProcessMonitor& monitor,
                                         const SessionPlaces* places = nullptr);
};

// The detail line alone, as status bars show it. No line break.
[[nodiscard]] QString statusLine(const StatusReport& report);

// The detail line, then one aligned row per session under a heading: PID,
// status, member count, project and command. Without a width (a file or a
// pipe) commands are whole; with one (a terminal's columns) each row is cut
// to fit it with "…". Every line ends with a line break.
[[nodiscard]] QString statusText(const StatusReport& report,
                                 std::optional<qsizetype> width = std::nullopt);

// One compact JSON object with its keys in a fixed order. No line break.
[[nodiscard]] QString statusJson(const StatusReport& report);

// ISO 8601 to the second with the UTC offset spelled out ("+01:00").
[[nodiscard]] QString isoTimestamp(const QDateTime& time);

} // namespace brenvik
