#pragma once

#include "monitor/ProcessMonitoring.h"
#include "places/SessionPlace.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <QString>
#include <optional>

namespace brenvik {

// How the process list shows n matches: a text, a plain stack of rows, or a
// scrolling list once the rows no longer fit the list area.
enum class ProcessListForm { placeholder, plainStack, scrollingList };

// Three rows of 38 with 6-point gaps fill the 126-point list area exactly.
inline constexpr qsizetype kPlainStackMaximumRows = 3;

[[nodiscard]] ProcessListForm processListForm(qsizetype matchCount);

// The text of an empty list: the error first, then "still checking", then
// "nothing found".
[[nodiscard]] QString processListPlaceholder(const std::optional<QString>& lastError,
                                             const std::optional<QDateTime>& lastUpdated);

// "Running", "Waiting for you" or "Idle".
[[nodiscard]] QString statusLabel(ProcessActivityStatus status);

// How long a status has held, in its largest whole unit: "45 s", "2 min",
// "3 h", "2 d". A `since` after `now` (the clock was set back) is "0 s".
[[nodiscard]] QString durationText(const QDateTime& since, const QDateTime& now);

// The status capsule: "Waiting for you · 2 min"; the status alone while it
// is not known since when.
[[nodiscard]] QString statusCapsuleText(const ProcessMatch& match, const QDateTime& now);

// A row's first line: the project directory with "~" for the home folder, or
// "PID n" where the directory is unknown.
[[nodiscard]] QString processRowTitle(const ProcessMatch& match,
                                      const QString& home = QDir::homePath());

// What a row says of the session's usage: "gpt-5.5 · 63 % context left",
// either part alone, or nothing where its log has no figures.
[[nodiscard]] QString processRowUsageText(const ProcessMatch& match);

// Where a row's session runs: "tmux work:2.1 \u00B7 xterm", "tmux work:2.1",
// "GNOME Terminal"; empty where that is not known.
[[nodiscard]] QString processRowPlace(const SessionPlace& place);

// A row's tool tip: the directory, the PID and process count, the start time,
// whether the session log or the CPU use decided the status, and the
// session's model, tokens and context left where its log has them.
[[nodiscard]] QString processRowToolTip(const ProcessMatch& match,
                                        const QString& home = QDir::homePath(),
                                        const QLocale& locale = QLocale::system());

} // namespace brenvik
