// The overall run state and the two texts people read: the summary of the
// status header and the detail line of the tool tip.
#include "MonitorTestSupport.h"

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

} // namespace
} // namespace brenvik::test
