#include "notify/LimitNoticePolicy.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

const QDateTime kNow = QDateTime(QDate(2026, 11, 24), QTime(12, 0), Qt::LocalTime).toUTC();

QList<AccountLimits> at(double fiveHours, double week, QString reached = {}) {
    return {{QStringLiteral("/h"),
             {RateLimitWindow{fiveHours, 300, kNow.addSecs(3600)},
              RateLimitWindow{week, 10080, kNow.addDays(3)},
              {},
              reached,
              kNow}}};
}

// Refresh after refresh: each step's limits and the summaries it announces.
TEST(LimitNoticePolicy, OnceAt90AndOnceReached) {
    const struct {
        const char* name;
        QList<AccountLimits> limits;
        bool enabled;
        QStringList summaries;
        qint64 minutesLater = 0;
    } steps[] = {
        {"below 90", at(42, 13), true, {}},
        {"passes 90", at(92, 13), true, {u"Codex 5 h limit at 92 % · resets 13:00"_qs}},
        {"still above 90", at(93, 13), true, {}},
        {"reached", at(100, 13), true, {u"Codex 5 h limit reached · resets 13:00"_qs}},
        {"reached again", at(100, 13, u"rate_limit_reached"_qs), true, {}},
        {"the week passes 90 while off", at(100, 91), false, {}},
        {"on again: the week is not announced late", at(100, 92), true, {}},
        {"after the reset: a new period",
         at(95, 92),
         true,
         {u"Codex 5 h limit at 95 % · resets 15:01"_qs},
         61},
    };
    LimitNoticePolicy policy;
    QDateTime now = kNow;
    for (const auto& step : steps) {
        now = now.addSecs(step.minutesLater * 60);
        QList<AccountLimits> limits = step.limits;
        for (AccountLimits& account : limits) { // a new period moves the reset time on
            if (step.minutesLater > 0)
                account.limits.primary->resetsAt = now.addSecs(2 * 3600);
        }
        QStringList summaries;
        for (const LimitNotice& notice : policy.update(limits, step.enabled, now))
            summaries << notice.summary;
        EXPECT_EQ(summaries, step.summaries) << step.name;
    }
}

} // namespace
} // namespace brenvik
