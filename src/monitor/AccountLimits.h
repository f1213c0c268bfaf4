#pragma once

#include "sessionlog/UsageFigures.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace brenvik {

struct SessionLogState;

// The plan's limits of one CODEX_HOME: the newest that any of its sessions'
// logs reported, kept after those sessions end.
struct AccountLimits {
    QString codexHome;
    RateLimits limits;

    friend bool operator==(const AccountLimits&, const AccountLimits&) = default;
};

// The kept limits with what the logs of this refresh report: per CODEX_HOME
// the newest by when its log line was written. Ordered by CODEX_HOME.
[[nodiscard]] QList<AccountLimits>
updatedAccountLimits(QList<AccountLimits> kept, const QList<std::optional<SessionLogState>>& logs);

// Whether a window's reset time has passed: then it reads "reset".
[[nodiscard]] bool isReset(const RateLimitWindow& window, const QDateTime& now);

// The share of a window used now: 0 once it reset.
[[nodiscard]] double usedPercentNow(const RateLimitWindow& window, const QDateTime& now);

// A window as people name it: "5 h", "week", else its length ("90 min", "2 d").
[[nodiscard]] QString windowName(const std::optional<qint64>& windowMinutes);

// When a window starts afresh, in local time: "19:20" today, else "Fri 08:00".
[[nodiscard]] QString resetTimeText(const QDateTime& resetsAt, const QDateTime& now);
// "resets 19:20".
[[nodiscard]] QString resetsText(const QDateTime& resetsAt, const QDateTime& now);

// "Limits: 5 h 42 % · week 13 % · resets 19:20": each window with the share
// used ("reset" once its reset time passed), and the reset time of the one
// nearer its limit.
[[nodiscard]] QString limitsLineText(const RateLimits& limits, const QDateTime& now);

// The limits line of each CODEX_HOME, named after the line where there are
// several ("Limits: week 96 % (~/.codex-work)"); none without limits.
[[nodiscard]] QStringList limitsLines(const QList<AccountLimits>& accounts, const QDateTime& now);

// How urgent the limits look: plain below 80 %, a warning from 80 %,
// critical from 95 % or when Codex reports a limit reached.
enum class LimitsLevel { normal, warning, critical };
[[nodiscard]] LimitsLevel limitsLevel(const RateLimits& limits, const QDateTime& now);
// The most urgent level of them all.
[[nodiscard]] LimitsLevel limitsLevel(const QList<AccountLimits>& accounts, const QDateTime& now);

} // namespace brenvik
