// The overall run state and the two texts people read: the summary of the
// status header and the detail line of the tool tip.
#include "MonitorTestSupport.h"

#include <gtest/gtest.h>

namespace brenvik::test {
namespace {

// The plural and singular forms the monitor cases below do not reach.
TEST(DetailText, SingularAndPlural) {
    const struct {
        CodexRunState state;
        QString expected;
    } cases[] = {
        {CodexRunState::observed(2, 0, 2), QStringLiteral("2 Codex processes idle")},
        {CodexRunState::observed(1, 1, 0), QStringLiteral("1 Codex process running")},
        {CodexRunState::observed(11, 10, 1),
         QStringLiteral("11 total \u00B7 10 running \u00B7 1 idle")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(detailText(c.state), c.expected);
}

// The monitor after its refreshes: what the scan gave, or nothing yet.
struct MonitorCase {
    const char* name;
    std::optional<QList<DetectedProcessSample>> samples; // none: no refresh ended yet
    std::optional<QString> failure;                      // the scan fails with this text
    QString summary;
    QString detail;
    const char* runState; // "idle", "error" or "observed t/r/i"
};

QString describe(const CodexRunState& state) {
    if (state.isIdle())
        return QStringLiteral("idle");
    if (state.asError())
        return QStringLiteral("error");
    const auto* observed = state.asObserved();
    return QStringLiteral("observed %1/%2/%3")
        .arg(observed->total)
        .arg(observed->running)
        .arg(observed->idle);
}

const MonitorCase kMonitorCases[] = {
    {"just started, no refresh ended", std::nullopt, std::nullopt,
     QStringLiteral("Checking for Codex CLI processes\u2026"),
     QStringLiteral("No Codex CLI process detected"), "idle"},
    {"refreshed, no match", QList<DetectedProcessSample>{}, std::nullopt,
     QStringLiteral("No Codex CLI process detected"),
     QStringLiteral("No Codex CLI process detected"), "idle"},
    {"one match, idle", QList{sample(1, 0.0, 1.0)}, std::nullopt, QStringLiteral("1 idle"),
     QStringLiteral("1 Codex process idle"), "observed 1/0/1"},
    {"two matches, both running", QList{sample(1, 9.0, 1.0), sample(2, 0.0, 1.0, true)},
     std::nullopt, QStringLiteral("2 running"), QStringLiteral("2 Codex processes running"),
     "observed 2/2/0"},
    {"three matches, one running",
     QList{sample(1, 0.0, 1.0), sample(2, 9.0, 1.0), sample(3, 0.0, 1.0)}, std::nullopt,
     QStringLiteral("3 total \u00B7 1 running \u00B7 2 idle"),
     QStringLiteral("3 total \u00B7 1 running \u00B7 2 idle"), "observed 3/1/2"},
    {"the latest refresh failed", std::nullopt, QStringLiteral("ps failed with exit code 1"),
     QStringLiteral("Process detection failed"),
     QStringLiteral("Codex process detection failed: ps failed with exit code 1"), "error"},
    {"failed with an empty text", std::nullopt, QString(),
     QStringLiteral("Process detection failed"), QStringLiteral("Codex process detection failed: "),
     "error"},
};

TEST(RunStateAndSummary, FollowThePublishedState) {
    for (const MonitorCase& testCase : kMonitorCases) {
        SCOPED_TRACE(testCase.name);
        ScriptedScan scan;
        ManualClock clock;
        CodexProcessMonitor monitor(scan.function(), clock.function());
        if (testCase.samples) {
            scan.returns(*testCase.samples);
            ASSERT_TRUE(refreshAt(monitor, clock, 0));
        } else if (testCase.failure) {
            scan.fails(*testCase.failure);
            ASSERT_TRUE(refreshAt(monitor, clock, 0));
        }
        EXPECT_EQ(monitor.summary(), testCase.summary);
        EXPECT_EQ(detailText(monitor.runState()), testCase.detail);
        EXPECT_EQ(describe(monitor.runState()), QString::fromLatin1(testCase.runState));
        const CodexRunState state = monitor.runState();
        if (const auto* error = state.asError()) {
            EXPECT_EQ(error->message, *testCase.failure);
        }
    }
}

} // namespace
} // namespace brenvik::test
