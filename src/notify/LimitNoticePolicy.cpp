#include "notify/LimitNoticePolicy.h"

#include <QCoreApplication>

namespace brenvik {

namespace {

struct LimitNoticeText {
    Q_DECLARE_TR_FUNCTIONS(LimitNoticeText)
};

} // namespace

QList<LimitNotice> LimitNoticePolicy::update(const QList<AccountLimits>& accounts, bool enabled,
                                             const QDateTime& now) {
    QList<LimitNotice> notices;
    for (const AccountLimits& account : accounts) {
        const RateLimits& limits = account.limits;
        const bool eitherWindow = limits.primary && limits.secondary;
        for (const auto* window : {&limits.primary, &limits.secondary}) {
            if (!*window)
                continue;
            const RateLimitWindow& shown = **window;
            const QString name = windowName(shown.windowMinutes);
            Announced& announced = m_announced[account.codexHome + u'\n' + name];
            // A new period: what was announced for the last one is over.
            if (announced.resetsAt && *announced.resetsAt <= now)
                announced = {};
            const double used = usedPercentNow(shown, now);
            const auto& other = window == &limits.primary ? limits.secondary : limits.primary;
            const bool nearer = !eitherWindow || usedPercentNow(*other, now) <= used;
            const bool reached =
                used >= 100 || (!limits.reachedType.isEmpty() && nearer && !isReset(shown, now));
            const Stage stage = reached                ? Stage::reached
                                : used >= kNearPercent ? Stage::near
                                                       : Stage::none;
            if (stage <= announced.stage)
                continue;
            announced = {stage, shown.resetsAt};
            if (!enabled)
                continue;
            QString summary =
                stage == Stage::reached
                    ? LimitNoticeText::tr("Codex %1 limit reached").arg(name)
                    : LimitNoticeText::tr("Codex %1 limit at %2 %").arg(name).arg(qRound(used));
            if (shown.resetsAt)
                summary += u" \u00B7 " + resetsText(*shown.resetsAt, now);
            notices.append({summary, limitsLineText(limits, now)});
        }
    }
    return notices;
}

} // namespace brenvik
