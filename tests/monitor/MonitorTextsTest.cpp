// The texts people read of the monitor's state: the run state's summary in
// the status header and detail line in the tool tip, and the plan's limits.
#include "MonitorTestSupport.h"
#include "monitor/AccountLimits.h"
#include "sessionlog/SessionLogState.h"

#include <gtest/gtest.h>

namespace brenvik::test {
namespace {

// brenvik-status's text tests and golden files hold the detail lines of no
// process, one process, a mix and a failure as well.
TEST(RunStateTexts, SummaryAndDetail) {
    const std::tuple<CodexRunState, const char16_t*, const char16_t*> cases[] = {
        {CodexRunState::idle(), u"No Codex CLI process detected", u"No Codex CLI process detected"},
        {CodexRunState::observed(2, 2, 0), u"2 running", u"2 Codex processes running"},
        {CodexRunState::observed(3, 1, 2), u"3 total \u00B7 1 running \u00B7 2 idle",
         u"3 total \u00B7 1 running \u00B7 2 idle"},
        {CodexRunState::error(u"ps failed"_qs), u"Process detection failed",
         u"Codex process detection failed: ps failed"},
        {CodexRunState::observed(1, 0, 0, 1, {u"brenvik"_qs}), u"1 waiting",
         u"1 Codex process waiting in brenvik"},
        {CodexRunState::observed(4, 1, 1, 2, {u"brenvik"_qs, u"~"_qs}),
         u"4 total \u00B7 1 running \u00B7 2 waiting \u00B7 1 idle",
         u"4 total \u00B7 1 running \u00B7 2 waiting \u00B7 1 idle \u2014 waiting in brenvik, ~"},
        {CodexRunState::observed(2, 0, 1, 1, {u"infra"_qs}),
         u"2 total \u00B7 1 waiting \u00B7 1 idle",
         u"2 total \u00B7 1 waiting \u00B7 1 idle \u2014 waiting in infra"},
    };
    for (const auto& [state, summary, detail] : cases) {
        EXPECT_EQ(summaryText(state, false), QStringView(summary));
        EXPECT_EQ(detailText(state), QStringView(detail));
    }
    EXPECT_EQ(summaryText(CodexRunState::idle(), true), u"Checking for Codex CLI processes\u2026");
}

// Waiting sessions count apart and name their projects; a failure, even one
// without a text, replaces the matches.
TEST(RunStateTexts, RunStateOfTheMatches) {
    QList<ProcessMatch> matches(4);
    matches[1].status = ProcessActivityStatus::running;
    matches[2].status = ProcessActivityStatus::waiting;
    matches[2].cwd = u"/srv/infra"_qs;
    EXPECT_EQ(detailText(runStateOf(matches, std::nullopt)),
              u"4 total \u00B7 1 running \u00B7 1 waiting \u00B7 2 idle \u2014 waiting in infra");
    EXPECT_EQ(detailText(runStateOf(matches, QString())), u"Codex process detection failed: ");
    EXPECT_TRUE(runStateOf({}, std::nullopt).isIdle());
}

// Until a refresh has ended, the monitor says it is checking.
TEST(RunStateTexts, CheckingUntilTheFirstRefreshEnds) {
    ScriptedMonitor scripted;
    EXPECT_EQ(scripted.monitor.summary(), summaryText(CodexRunState::idle(), true));
    ASSERT_TRUE(scripted.refreshWith({}));
    EXPECT_EQ(scripted.monitor.summary(), summaryText(CodexRunState::idle(), false));
}

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
} // namespace brenvik::test
