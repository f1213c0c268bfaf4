// The overall run state and the two texts people read: the summary of the
// status header and the detail line of the tool tip.
#include "MonitorTestSupport.h"

#include <gtest/gtest.h>

namespace brenvik::test {
namespace {

// The waiting forms, which the monitor cases below do not reach.
TEST(DetailText, WaitingProjects) {
    const struct {
        CodexRunState state;
        QString expected;
    } cases[] = {
        {CodexRunState::observed(1, 0, 0, 1, {u"brenvik"_qs}),
         QStringLiteral("1 Codex process waiting in brenvik")},
        {CodexRunState::observed(4, 1, 1, 2, {u"brenvik"_qs, u"~"_qs}),
         QStringLiteral("4 total \u00B7 1 running \u00B7 2 waiting \u00B7 1 idle \u2014 waiting in "
                        "brenvik, ~")},
        {CodexRunState::observed(2, 0, 1, 1, {u"infra"_qs}),
         QStringLiteral("2 total \u00B7 1 waiting \u00B7 1 idle \u2014 waiting in infra")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(detailText(c.state), c.expected);
}

QString describe(const CodexRunState& state) {
    if (const auto* observed = state.asObserved())
        return QStringLiteral("%1/%2/%3")
            .arg(observed->total)
            .arg(observed->running)
            .arg(observed->idle);
    return state.asError() ? u"error: "_qs + state.asError()->message : u"idle"_qs;
}

// The run state of the published matches (or failure), and its texts. The
// run state is described as its kind and figures.
TEST(RunStateAndSummary, FollowThePublishedState) {
    const QString noProcess = QStringLiteral("No Codex CLI process detected");
    const QString mixed = QStringLiteral("3 total \u00B7 1 running \u00B7 2 idle");
    const QString failed = QStringLiteral("Process detection failed");
    constexpr auto idle = ProcessActivityStatus::idle, running = ProcessActivityStatus::running;
    const struct {
        const char* name;
        QList<ProcessActivityStatus> matches;
        std::optional<QString> failure;
        QString summary;
        QString detail;
        QString runState; // "idle", "error: text" or "total/running/idle"
    } cases[] = {
        {"no match", {}, std::nullopt, noProcess, noProcess, u"idle"_qs},
        {"one match, idle",
         {idle},
         std::nullopt,
         QStringLiteral("1 idle"),
         QStringLiteral("1 Codex process idle"),
         u"1/0/1"_qs},
        {"two matches, both running",
         {running, running},
         std::nullopt,
         QStringLiteral("2 running"),
         QStringLiteral("2 Codex processes running"),
         u"2/2/0"_qs},
        {"three matches, one running",
         {idle, running, idle},
         std::nullopt,
         mixed,
         mixed,
         u"3/1/2"_qs},
        {"the latest refresh failed",
         {},
         QStringLiteral("ps failed with exit code 1"),
         failed,
         QStringLiteral("Codex process detection failed: ps failed with exit code 1"),
         u"error: ps failed with exit code 1"_qs},
        {"failed with an empty text",
         {},
         QString(),
         failed,
         QStringLiteral("Codex process detection failed: "),
         u"error: "_qs},
    };
    for (const auto& testCase : cases) {
        QList<ProcessMatch> matches;
        for (const ProcessActivityStatus status : testCase.matches) {
            matches.append(ProcessMatch());
            matches.last().status = status;
        }
        const CodexRunState state = runStateOf(matches, testCase.failure);
        EXPECT_EQ(summaryText(state, false), testCase.summary) << testCase.name;
        EXPECT_EQ(detailText(state), testCase.detail) << testCase.name;
        EXPECT_EQ(describe(state), testCase.runState) << testCase.name;
    }
    EXPECT_EQ(summaryText(CodexRunState::idle(), true),
              QStringLiteral("Checking for Codex CLI processes\u2026"));
}

// Until a refresh has ended, the monitor says it is checking.
TEST(RunStateAndSummary, CheckingUntilTheFirstRefreshEnds) {
    ScriptedMonitor scripted;
    EXPECT_EQ(scripted.monitor.summary(), summaryText(CodexRunState::idle(), true));
    ASSERT_TRUE(scripted.refreshWith({}));
    EXPECT_EQ(scripted.monitor.summary(), summaryText(CodexRunState::idle(), false));
}

} // namespace
} // namespace brenvik::test
