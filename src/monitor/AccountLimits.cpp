#include "monitor/AccountLimits.h"

#include "monitor/ProcessMonitoring.h"
#include "monitor/Translations.h"
#include "sessionlog/SessionLogState.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>
#include <cmath>

namespace brenvik {

namespace {

constexpr qint64 kWeek = 7 * 24 * 60;

struct LimitsText {
    Q_DECLARE_TR_FUNCTIONS(LimitsText)
};

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
        return LimitsText::tr("limit");
    if (*windowMinutes == kWeek)
        return LimitsText::tr("week");
    const qint64 minutes = *windowMinutes;
    if (minutes % (24 * 60) == 0)
        return LimitsText::tr("%1 d", "days").arg(minutes / (24 * 60));
    if (minutes % 60 == 0)
        return LimitsText::tr("%1 h", "hours").arg(minutes / 60);
    return LimitsText::tr("%1 min", "minutes").arg(minutes);
}

QString resetTimeText(const QDateTime& resetsAt, const QDateTime& now) {
    const QDateTime local = resetsAt.toLocalTime();
    const QLocale locale = translationLocale();
    const QString time = locale.toString(local.time(), QStringLiteral("HH:mm"));
    if (local.date() == now.toLocalTime().date())
        return time;
    return locale.toString(local.date(), QStringLiteral("ddd")) + u' ' + time;
}

QString resetsText(const QDateTime& resetsAt, const QDateTime& now) {
    return LimitsText::tr("resets %1", "a limit window, at a time")
        .arg(resetTimeText(resetsAt, now));
}

QString limitsLineText(const RateLimits& limits, const QDateTime& now) {
    QStringList windows;
    for (const auto* window : {&limits.primary, &limits.secondary}) {
        if (*window)
            windows.append(windowName((*window)->windowMinutes) + u' ' +
                           (isReset(**window, now) ? LimitsText::tr("reset", "a limit window")
                                                   : percentText((*window)->usedPercent)));
    }
    // Trimmed: a line of no window ends after its colon.
    QString text = LimitsText::tr("Limits: %1").arg(windows.join(u" \u00B7 ")).trimmed();
    if (const RateLimitWindow* nearer = nearerWindow(limits, now); nearer && nearer->resetsAt)
        text += u" \u00B7 " + resetsText(*nearer->resetsAt, now);
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
