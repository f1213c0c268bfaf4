#include "notify/LimitNoticePolicy.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

const QDateTime kNow = QDateTime(QDate(2026, 11, 24), QTime(12, 0), Qt::LocalTime).toUTC();

// One account's limits; its 5 h window resets `resetInMinutes` after kNow.
QList<AccountLimits> at(double fiveHours, double week, QString reached = {},
                        int resetInMinutes = 60) {
    const RateLimits limits{RateLimitWindow{fiveHours, 300, kNow.addSecs(resetInMinutes * 60)},
                            RateLimitWindow{week, 10080, kNow.addDays(3)},
                            {},
                            reached,
                            kNow};
    return {{QStringLiteral("/h"), limits}};
}

// Refresh after refresh: each step's name, limits, whether notices are on,
// the summaries it announces, and its time in minutes after kNow.
TEST(LimitNoticePolicy, OnceAt90AndOnceReached) {
    const std::tuple<const char*, QList<AccountLimits>, bool, QStringList, int> steps[] = {
        {"below 90", at(42, 13), true, {}, 0},
        {"passes 90", at(92, 13), true, {u"Codex 5 h limit at 92 % · resets 13:00"_qs}, 0},
        {"still above 90", at(93, 13), true, {}, 0},
        {"reached", at(100, 13), true, {u"Codex 5 h limit reached · resets 13:00"_qs}, 0},
        {"reached again", at(100, 13, u"rate_limit_reached"_qs), true, {}, 0},
        {"the week passes 90 while off", at(100, 91), false, {}, 0},
        {"on again: the week is not announced late", at(100, 92), true, {}, 0},
        {"after the reset: a new period",
         at(95, 92, {}, 181),
         true,
         {u"Codex 5 h limit at 95 % · resets 15:01"_qs},
         61},
    };
    LimitNoticePolicy policy;
    for (const auto& [name, limits, enabled, expected, minutes] : steps) {
        QStringList summaries;
        for (const LimitNotice& notice : policy.update(limits, enabled, kNow.addSecs(minutes * 60)))
            summaries << notice.summary;
        EXPECT_EQ(summaries, expected) << name;
    }
}

} // namespace
} // namespace brenvik
