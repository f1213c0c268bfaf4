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

// The monitor after its refreshes: what the scan gave, or nothing yet. The
// run state is described as its kind and figures.
TEST(RunStateAndSummary, FollowThePublishedState) {
    const QString noProcess = QStringLiteral("No Codex CLI process detected");
    const QString mixed = QStringLiteral("3 total \u00B7 1 running \u00B7 2 idle");
    const QString failed = QStringLiteral("Process detection failed");
    const struct {
        const char* name;
        std::optional<QList<DetectedProcessSample>> samples; // none: no refresh ended yet
        std::optional<QString> failure;                      // the scan fails with this text
        QString summary;
        QString detail;
        QString runState; // "idle", "error: text" or "total/running/idle"
    } cases[] = {
        {"just started, no refresh ended", std::nullopt, std::nullopt,
         QStringLiteral("Checking for Codex CLI processes\u2026"), noProcess, u"idle"_qs},
        {"refreshed, no match", QList<DetectedProcessSample>{}, std::nullopt, noProcess, noProcess,
         u"idle"_qs},
        {"one match, idle", QList{sample(1, 0.0, 1.0)}, std::nullopt, QStringLiteral("1 idle"),
         QStringLiteral("1 Codex process idle"), u"1/0/1"_qs},
        {"two matches, both running", QList{sample(1, 9.0, 1.0), sample(2, 0.0, 1.0, true)},
         std::nullopt, QStringLiteral("2 running"), QStringLiteral("2 Codex processes running"),
         u"2/2/0"_qs},
        {"three matches, one running",
         QList{sample(1, 0.0, 1.0), sample(2, 9.0, 1.0), sample(3, 0.0, 1.0)}, std::nullopt, mixed,
         mixed, u"3/1/2"_qs},
        {"the latest refresh failed", std::nullopt, QStringLiteral("ps failed with exit code 1"),
         failed, QStringLiteral("Codex process detection failed: ps failed with exit code 1"),
         u"error: ps failed with exit code 1"_qs},
        {"failed with an empty text", std::nullopt, QString(), failed,
         QStringLiteral("Codex process detection failed: "), u"error: "_qs},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        ScriptedScan scan;
        ManualClock clock;
        CodexProcessMonitor monitor(scan.function(), clock.function());
        if (testCase.samples || testCase.failure) {
            if (testCase.failure)
                scan.fails(*testCase.failure);
            else
                scan.returns(*testCase.samples);
            ASSERT_TRUE(refreshAt(monitor, clock, 0));
        }
        EXPECT_EQ(monitor.summary(), testCase.summary);
        EXPECT_EQ(detailText(monitor.runState()), testCase.detail);
        EXPECT_EQ(describe(monitor.runState()), testCase.runState);
    }
}

} // namespace
} // namespace brenvik::test
