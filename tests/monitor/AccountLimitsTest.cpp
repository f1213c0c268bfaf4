#include "monitor/AccountLimits.h"

#include "sessionlog/SessionLogState.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

const QDateTime kNow = QDateTime(QDate(2026, 11, 24), QTime(12, 0), Qt::LocalTime).toUTC();

RateLimitWindow window(double percent, qint64 minutes, int resetInMinutes) {
    return {percent, minutes, kNow.addSecs(resetInMinutes * 60)};
}

RateLimits limits(RateLimitWindow fiveHours, std::optional<RateLimitWindow> week = {},
                  QString reached = {}) {
    return {fiveHours, week, {}, reached, kNow};
}

TEST(AccountLimits, LineAndLevel) {
    using enum LimitsLevel;
    const std::tuple<RateLimits, const char16_t*, LimitsLevel> cases[] = {
        // Both windows, the 5 h one nearer.
        {limits(window(42, 300, 200), window(13, 10080, 3000)),
         u"Limits: 5 h 42 % · week 13 % · resets 15:20", normal},
        // The week nearer its limit; its reset the next day.
        {limits(window(20, 300, 60), window(81, 10080, 24 * 60)),
         u"Limits: 5 h 20 % · week 81 % · resets Wed 12:00", warning},
        {limits(window(96, 300, 30)), u"Limits: 5 h 96 % · resets 12:30", critical},
        // Reached at 60 %.
        {limits(window(60, 300, 30), {}, u"rate_limit_reached"_qs),
         u"Limits: 5 h 60 % · resets 12:30", critical},
        // A window that has reset: the other window's reset shown.
        {limits(window(99, 300, -1), window(13, 10080, 60), u"rate_limit_reached"_qs),
         u"Limits: 5 h reset · week 13 % · resets 13:00", normal},
        // An odd window length, rounded up to a level it does not reach; no reset time.
        {limits({79.6, 90, {}}), u"Limits: 90 min 80 %", normal},
        // A window of unknown length.
        {limits({5, {}, {}}, window(1, 2880, 10)), u"Limits: limit 5 % · 2 d 1 %", normal},
    };
    for (const auto& [rateLimits, line, level] : cases) {
        const QString text = limitsLineText(rateLimits, kNow);
        EXPECT_EQ(text, QStringView(line));
        EXPECT_EQ(limitsLevel(rateLimits, kNow), level) << text.toStdString();
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
