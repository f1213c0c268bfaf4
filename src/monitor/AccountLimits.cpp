#include "monitor/AccountLimits.h"

#include "monitor/ProcessMonitoring.h"
#include "sessionlog/SessionLogState.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

namespace brenvik {

namespace {

constexpr qint64 kFiveHours = 5 * 60;
constexpr qint64 kWeek = 7 * 24 * 60;

QString percentText(double percent) {
    return QString::number(std::clamp(qRound(percent), 0, 100)) + u" %";
}

// The window nearer its limit: the higher share used, then the earlier reset.
const RateLimitWindow* nearerWindow(const RateLimits& limits, const QDateTime& now) {
    const RateLimitWindow* nearer = nullptr;
    for (const auto* window : {&limits.primary, &limits.secondary}) {
        if (!*window || isReset(**window, now))
            continue;
        if (!nearer || usedPercentNow(**window, now) > usedPercentNow(*nearer, now))
            nearer = &**window;
    }
    return nearer;
}

} // namespace

QList<AccountLimits> updatedAccountLimits(QList<AccountLimits> kept,
                                          const QList<std::optional<SessionLogState>>& logs) {
    for (const auto& log : logs) {
        if (!log || !log->rateLimits || log->codexHome.isEmpty())
            continue;
        const auto known = std::find_if(kept.begin(), kept.end(), [&](const AccountLimits& a) {
            return a.codexHome == log->codexHome;
        });
        if (known == kept.end())
            kept.append(AccountLimits{log->codexHome, *log->rateLimits});
        else if (log->rateLimits->observedAt >= known->limits.observedAt)
            known->limits = *log->rateLimits;
    }
    std::sort(kept.begin(), kept.end(), [](const AccountLimits& a, const AccountLimits& b) {
        return a.codexHome < b.codexHome;
    });
    return kept;
}

bool isReset(const RateLimitWindow& window, const QDateTime& now) {
    return window.resetsAt && *window.resetsAt <= now;
}

double usedPercentNow(const RateLimitWindow& window, const QDateTime& now) {
    return isReset(window, now) ? 0.0 : window.usedPercent;
}

QString windowName(const std::optional<qint64>& windowMinutes) {
    if (!windowMinutes)
        return QStringLiteral("limit");
    if (*windowMinutes == kFiveHours)
        return QStringLiteral("5 h");
    if (*windowMinutes == kWeek)
        return QStringLiteral("week");
    const qint64 minutes = *windowMinutes;
    if (minutes % (24 * 60) == 0)
        return QString::number(minutes / (24 * 60)) + u" d";
    if (minutes % 60 == 0)
        return QString::number(minutes / 60) + u" h";
    return QString::number(minutes) + u" min";
}

QString resetTimeText(const QDateTime& resetsAt, const QDateTime& now) {
    const QDateTime local = resetsAt.toLocalTime();
    const QString time = QLocale::c().toString(local.time(), QStringLiteral("HH:mm"));
    if (local.date() == now.toLocalTime().date())
        return time;
    return QLocale::c().toString(local.date(), QStringLiteral("ddd")) + u' ' + time;
}

QString limitsLineText(const RateLimits& limits, const QDateTime& now) {
    QString text = QStringLiteral("Limits:");
    bool first = true;
    for (const auto* window : {&limits.primary, &limits.secondary}) {
        if (!*window)
            continue;
        text += first ? QStringView(u" ") : QStringView(u" \u00B7 ");
        first = false;
        text += windowName((*window)->windowMinutes) + u' ' +
                (isReset(**window, now) ? QStringLiteral("reset")
                                        : percentText((*window)->usedPercent));
    }
    if (const RateLimitWindow* nearer = nearerWindow(limits, now); nearer && nearer->resetsAt)
        text += u" \u00B7 resets " + resetTimeText(*nearer->resetsAt, now);
    return text;
}

QStringList limitsLines(const QList<AccountLimits>& accounts, const QDateTime& now) {
    QStringList lines;
    for (const AccountLimits& account : accounts) {
        QString line = limitsLineText(account.limits, now);
        if (accounts.size() > 1)
            line += u" (" + abbreviatedDirectory(account.codexHome) + u')';
        lines.append(line);
    }
    return lines;
}

LimitsLevel limitsLevel(const QList<AccountLimits>& accounts, const QDateTime& now) {
    LimitsLevel level = LimitsLevel::normal;
    for (const AccountLimits& account : accounts)
        level = std::max(level, limitsLevel(account.limits, now));
    return level;
}

LimitsLevel limitsLevel(const RateLimits& limits, const QDateTime& now) {
    const RateLimitWindow* nearer = nearerWindow(limits, now);
    const double used = nearer ? usedPercentNow(*nearer, now) : 0.0;
    // A limit reached no longer holds once a window reset since.
    const bool anyReset = (limits.primary && isReset(*limits.primary, now)) ||
                          (limits.secondary && isReset(*limits.secondary, now));
    if ((!limits.reachedType.isEmpty() && !anyReset) || used >= 95)
        return LimitsLevel::critical;
    return used >= 80 ? LimitsLevel::warning : LimitsLevel::normal;
}

} // namespace brenvik
