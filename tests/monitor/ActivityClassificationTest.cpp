// Running or idle: the three busy tests, the grace period, and the per-PID
// memory that links one refresh to the next.
#include "MonitorTestSupport.h"

#include <gtest/gtest.h>

namespace brenvik::test {
namespace {

constexpr auto running = ProcessActivityStatus::running;
constexpr auto idle = ProcessActivityStatus::idle;

// One successful refresh: what the scan returns, when, and the verdicts as
// "pid status lastBusyAt" per match, in order ("-": never busy).
struct Step {
    qint64 atMs;
    QList<DetectedProcessSample> samples;
    const char* expected;
};

// The monitor's matches with the busy times its history keeps for them.
QString verdicts(const CodexProcessMonitor& monitor) {
    QStringList out;
    for (const ProcessMatch& m : monitor.matches()) {
        const auto busy = monitor.historyByPID().value(m.pid).lastBusyAt;
        out << QStringLiteral("%1 %2 %3")
                   .arg(m.pid)
                   .arg(rawValue(m.status), busy ? QString::number(at(0).msecsTo(*busy)) : u"-"_qs);
    }
    return out.join(u", ");
}

const double base = 100.0; // a group's CPU seconds at first sight

const struct {
    const char* name;
    QList<Step> steps;
} kCases[] = {
    {"hot state alone is busy, also at first sight",
     {{0, {sample(1, 0.0, 0.0, true)}, "1 running 0"}}},
    {"two 10 ms ticks in a 2 s interval are noise; three are work; the samples' order kept",
     {{0, {sample(3, 1.5, base), sample(2, 1.0, base)}, "3 running 0, 2 idle -"}}},
    {"an idle Codex waking for two ticks every few seconds never reads as busy",
     {{0, {sample(1, 0.0, base)}, "1 idle -"},
      {2000, {sample(1, 1.0, base + 0.02)}, "1 idle -"},
      {4000, {sample(1, 1.0, base + 0.04)}, "1 idle -"}}},
    {"over a long interval, exactly the threshold is busy and just below it not",
     {{0, {sample(1, 0.0, base), sample(2, 0.0, base)}, "1 idle -, 2 idle -"},
      {10000, {sample(1, 0.4, base), sample(2, 0.39, base)}, "1 running 10000, 2 idle -"}}},
    {"CPU percent far above one core is busy",
     {{0,
       {sample(4'000'000'000, 350.0, 61.25, false, QStringLiteral("Node /x/CODEX --Flag"), 3)},
       "4000000000 running 0"}}},
    {"CPU time grown by 0.05 s is busy; by exactly the threshold, or shrunk, not",
     {{0,
       {sample(1, 0, base), sample(2, 0, base), sample(3, 0, base)},
       "1 idle -, 2 idle -, 3 idle -"},
      {2000,
       {sample(1, 0, base + 0.05), sample(2, 0, base + CodexProcessMonitor::cpuAdvanceThreshold),
        sample(3, 0, base - 10)},
       "1 running 2000, 2 idle -, 3 idle -"}}},
    {"grace counts from the last busy refresh, 8.0 s still running, 8.001 s idle; busy again "
     "restarts it",
     {{0, {sample(1, 5.0, base)}, "1 running 0"},
      {8000, {sample(1, 0.0, base)}, "1 running 0"},
      {8001, {sample(1, 0.0, base)}, "1 idle 0"},
      {12000, {sample(1, 0.0, base + 1.0)}, "1 running 12000"},
      {20001, {sample(1, 0.0, base + 1.0)}, "1 idle 12000"}}},
    {"clock set back: a last busy time ahead of now is within grace",
     {{20000, {sample(1, 5.0, base)}, "1 running 20000"},
      {0, {sample(1, 0.0, base)}, "1 running 20000"},
      {28001, {sample(1, 0.0, base)}, "1 idle 20000"}}},
    {"a group missing for one refresh returns as new: no CPU-time test, no grace",
     {{0, {sample(1, 5.0, base, true)}, "1 running 0"},
      {2000, {sample(2, 0.0, base)}, "2 idle -"},
      {4000, {sample(1, 0.0, base + 50.0)}, "1 idle -"}}},
    {"a reused PID inherits the record of the process before it",
     {{0, {sample(1, 5.0, base, false, QStringLiteral("codex exec old"))}, "1 running 0"},
      {2000, {sample(1, 0.0, 0.0, false, QStringLiteral("/usr/bin/codex new"))}, "1 running 0"}}},
};

TEST(ActivityClassification, VerdictsAcrossRefreshes) {
    for (const auto& testCase : kCases) {
        SCOPED_TRACE(testCase.name);
        ScriptedMonitor scripted;
        const CodexProcessMonitor& monitor = scripted.monitor;
        for (const Step& step : testCase.steps) {
            SCOPED_TRACE(::testing::Message() << "refresh at " << step.atMs << " ms");
            ASSERT_TRUE(scripted.refreshWith(step.samples, {}, step.atMs));
            EXPECT_EQ(verdicts(monitor), QString::fromLatin1(step.expected));
            ASSERT_EQ(monitor.matches().size(), step.samples.size());
            EXPECT_EQ(monitor.historyByPID().size(), step.samples.size());
            // Each match carries its sample's figures as they were read.
            for (qsizetype i = 0; i < step.samples.size(); ++i) {
                const ProcessMatch& m = monitor.matches()[i];
                const DetectedProcessSample& s = step.samples[i];
                EXPECT_EQ(std::tie(m.command, m.instantaneousCPUPercent, m.cumulativeCPUTime,
                                   m.memberCount, m.processCount),
                          std::tie(s.command, s.totalCPUPercent, s.cumulativeCPUTime, s.memberCount,
                                   s.processCount));
            }
        }
    }
}

CodexProcessMonitor::LogState logIn(TurnPhase phase, qint64 sinceMs = 0) {
    SessionLogState state;
    state.phase = phase;
    state.phaseSince = at(sinceMs);
    return state;
}

// Where the session log decides, it decides at once and alone; where it
// cannot, the CPU rule does.
TEST(ActivityClassification, TheSessionLogDecidesWhereItCan) {
    const auto waiting = ProcessActivityStatus::waiting;
    const auto log = StatusSource::log;
    const auto cpu = StatusSource::cpu;
    const auto call = TurnPhase::awaitingToolOutput;
    // Name, CPU percent (any is hot as well), the log's phase (none: no log)
    // and since when, and the verdict with its source; it holds since then.
    const std::tuple<const char*, double, std::optional<TurnPhase>, qint64, ProcessActivityStatus,
                     StatusSource>
        cases[] = {
            {"open turn, model thinking at no CPU", 0, TurnPhase::running, -5000, running, log},
            {"tool call, no output, no command: the user is asked", 0, call, -2000, waiting, log},
            {"tool call written a moment ago: its command starts", 0, call, -1999, running, log},
            {"turn ended: idle whatever the CPU", 80, TurnPhase::idle, -3000, idle, log},
            {"no turn yet: idle whatever start-up costs", 90, TurnPhase::notStarted, 0, idle, log},
            {"a log that cannot decide: the CPU rule", 80, TurnPhase::unknown, 0, running, cpu},
            {"no log", 0, std::nullopt, 0, idle, cpu},
        };
    const ScriptedMonitor scripted;
    for (const auto& [name, cpuPercent, phase, sinceMs, status, source] : cases) {
        const auto result =
            scripted.monitor.classify({sample(1, cpuPercent, base, cpuPercent > 0)}, at(0),
                                      {phase ? logIn(*phase, sinceMs) : std::nullopt});
        ASSERT_EQ(result.matches.size(), 1) << name;
        EXPECT_EQ(result.matches[0].status, status) << name;
        EXPECT_EQ(result.matches[0].source, source) << name;
        EXPECT_EQ(result.matches[0].since, at(sinceMs)) << name;
    }
}

// An approval question comes before its command: a pending call whose
// command ran and ended reads running until Codex writes its output.
TEST(ActivityClassification, APendingCallWaitsOnlyBeforeItsCommandRan) {
    ScriptedMonitor scripted;
    const std::tuple<qint64, qint64, qint64, ProcessActivityStatus> steps[] = {
        // at ms, commands running, call written at ms, status
        {0, 0, -5000, ProcessActivityStatus::waiting}, // the question
        {2000, 1, -5000, running},                     // approved: its command runs
        {4000, 0, -5000, running},                     // it ended; no output written yet
        {6000, 0, 5000, running},                      // the next call, just written
        {8000, 0, 5000, ProcessActivityStatus::waiting},
    };
    for (const auto& [atMs, commands, callSinceMs, status] : steps) {
        DetectedProcessSample s = sample(1, 0.0, base);
        s.runningCommands = commands;
        ASSERT_TRUE(
            scripted.refreshWith({s}, {logIn(TurnPhase::awaitingToolOutput, callSinceMs)}, atMs));
        EXPECT_EQ(scripted.monitor.matches()[0].status, status) << "at " << atMs << " ms";
    }
}

} // namespace
} // namespace brenvik::test
