#include "monitor/AccountLimits.h"

#include "sessionlog/SessionLogState.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

const QDateTime kNow = QDateTime(QDate(2026, 11, 24), QTime(12, 0), Qt::LocalTime).toUTC();

RateLimitWindow window(double percent, qint64 minutes, int resetInMinutes) {
    return {percent, minutes, kNow.addSecs(resetInMinutes * 60)};
}

TEST(AccountLimits, LineAndLevel) {
    const struct {
        const char* name;
        RateLimits limits;
        const char16_t* line;
        LimitsLevel level;
    } cases[] = {
        {"both windows, the 5 h one nearer",
         {window(42, 300, 200), window(13, 10080, 3000), {}, {}, kNow},
         u"Limits: 5 h 42 % · week 13 % · resets 15:20",
         LimitsLevel::normal},
        {"the week nearer its limit, next day",
         {window(20, 300, 60), window(81, 10080, 24 * 60), {}, {}, kNow},
         u"Limits: 5 h 20 % · week 81 % · resets Wed 12:00",
         LimitsLevel::warning},
        {"96 %",
         {window(96, 300, 30), std::nullopt, {}, {}, kNow},
         u"Limits: 5 h 96 % · resets 12:30",
         LimitsLevel::critical},
        {"reached at 60 %",
         {window(60, 300, 30), std::nullopt, {}, u"rate_limit_reached"_qs, kNow},
         u"Limits: 5 h 60 % · resets 12:30",
         LimitsLevel::critical},
        {"reset: the other window's reset shown",
         {window(99, 300, -1), window(13, 10080, 60), {}, u"rate_limit_reached"_qs, kNow},
         u"Limits: 5 h reset · week 13 % · resets 13:00",
         LimitsLevel::normal},
        {"odd window, no reset time",
         {RateLimitWindow{79.6, 90, {}}, std::nullopt, {}, {}, kNow},
         u"Limits: 90 min 80 %",
         LimitsLevel::normal},
        {"unknown window length",
         {RateLimitWindow{5, {}, {}}, window(1, 2880, 10), {}, {}, kNow},
         u"Limits: limit 5 % · 2 d 1 %",
         LimitsLevel::normal},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(limitsLineText(c.limits, kNow), QStringView(c.line)) << c.name;
        EXPECT_EQ(limitsLevel(c.limits, kNow), c.level) << c.name;
    }
}

// The newest per CODEX_HOME, kept when its sessions are gone.
TEST(AccountLimits, NewestPerCodexHomeKept) {
    const auto state = [](const char16_t* home, double percent, int second) {
        SessionLogState log;
        log.codexHome = QString::fromUtf16(home);
        log.rateLimits =
            RateLimits{window(percent, 300, 60), std::nullopt, {}, {}, kNow.addSecs(second)};
        return std::optional(log);
    };
    QList<AccountLimits> kept = updatedAccountLimits(
        {}, {state(u"/h/b", 10, 1), state(u"/h/a", 20, 5), state(u"/h/a", 30, 3), std::nullopt});
    ASSERT_EQ(kept.size(), 2);
    EXPECT_EQ(kept[0].codexHome, u"/h/a");
    EXPECT_EQ(kept[0].limits.primary->usedPercent, 20);
    kept = updatedAccountLimits(kept, {state(u"/h/b", 50, 9), state(u"", 70, 20)});
    ASSERT_EQ(kept.size(), 2);
    EXPECT_EQ(kept[0].limits.primary->usedPercent, 20);
    EXPECT_EQ(kept[1].limits.primary->usedPercent, 50);
}

} // namespace
} // namespace brenvik
