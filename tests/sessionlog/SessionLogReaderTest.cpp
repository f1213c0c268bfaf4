#include "sessionlog/SessionLogReader.h"

#include "SessionLogTestSupport.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

using namespace test;
using namespace Qt::StringLiterals;

// Reads the log at once (looking back from the end) and line by line (one
// update per line); both must tell the same.
SessionLogState readWhole(const QList<QByteArray>& lines) {
    const LogFile log;
    log.append(lines.join());
    return SessionLogReader(log.path()).update();
}
SessionLogState readLineByLine(const QList<QByteArray>& lines) {
    const LogFile log;
    SessionLogReader reader(log.path());
    SessionLogState state = reader.update();
    for (const QByteArray& line : lines) {
        log.append(line);
        state = reader.update();
    }
    return state;
}

TEST(SessionLogReader, PhaseFollowsTheTurn) {
    const QByteArray outputMentioningClose =
        R"("{\"type\":\"event_msg\",\"payload\":{\"type\":\"task_complete\"}}")";
    const struct {
        const char* name;
        QList<QByteArray> lines;
        TurnPhase phase;
        int since; // the line that set the phase, -1 for none
        std::optional<QString> message;
    } cases[] = {
        {"session_meta only", {sessionMeta(0)}, TurnPhase::unknown, -1, {}},
        {"turn open",
         {sessionMeta(0), taskStarted(1), userMessage(2, R"("fix it")")},
         TurnPhase::running,
         1,
         {}},
        {"tool call without output",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), tokenCount(3)},
         TurnPhase::awaitingToolOutput,
         2,
         {}},
        {"output arrives",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), toolOutput(3, "c1")},
         TurnPhase::running,
         3,
         {}},
        {"parallel calls, one answered",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), toolCall(3, "c2"),
          toolOutput(4, "c2")},
         TurnPhase::awaitingToolOutput,
         2,
         {}},
        {"output of another call",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), toolOutput(3, "c9")},
         TurnPhase::awaitingToolOutput,
         2,
         {}},
        {"custom tool call and its output",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1", "custom_tool_call"),
          toolOutput(3, "c1", R"("ok")", "custom_tool_call_output")},
         TurnPhase::running,
         3,
         {}},
        {"local shell call",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1", "local_shell_call")},
         TurnPhase::awaitingToolOutput,
         2,
         {}},
        {"task_complete",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), toolOutput(3, "c1"),
          taskComplete(4, R"("Fixed the tests.\nAll 12 pass.")")},
         TurnPhase::idle,
         4,
         u"Fixed the tests."_s},
        {"turn_aborted while a call waits",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), turnAborted(3)},
         TurnPhase::idle,
         3,
         {}},
        {"agent_message kept when task_complete has none",
         {sessionMeta(0), taskStarted(1),
          agentMessage(2, R"("\n  Done: \u00e9t\u00e9 \ud83d\ude00\n")"), taskComplete(3)},
         TurnPhase::idle,
         3,
         u"Done: été 😀"_s},
        {"a new turn forgets the last message",
         {sessionMeta(0), taskStarted(1), taskComplete(2, R"("old")"), taskStarted(3, "T2")},
         TurnPhase::running,
         3,
         {}},
        {"long message cut to 120 characters",
         {sessionMeta(0), taskStarted(1), taskComplete(2, '"' + QByteArray(200, 'x') + '"')},
         TurnPhase::idle,
         2,
         QString(119, u'x') + u'…'},
        {"old Codex: no task_started",
         {sessionMeta(0), userMessage(1, R"("hi")"), toolCall(2, "c1"), toolOutput(3, "c1"),
          agentMessage(4, R"("Hello")")},
         TurnPhase::unknown,
         -1,
         u"Hello"_s},
        {"task_complete inside a tool output and a user message",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"),
          toolOutput(3, "c1", outputMentioningClose),
          userMessage(4, R"("\"type\":\"task_complete\"")")},
         TurnPhase::running,
         3,
         {}},
        {"resumed after a crash: the new turn supersedes the orphan",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), taskStarted(3, "T2")},
         TurnPhase::running,
         3,
         {}},
        {"replay marker after an open turn",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), sessionMeta(3, "S0"), tokenCount(4)},
         TurnPhase::idle,
         3,
         {}},
        {"replay marker, then a live turn",
         {sessionMeta(0), taskStarted(1), sessionMeta(2, "S0"), taskStarted(3, "T2"),
          toolCall(4, "c1")},
         TurnPhase::awaitingToolOutput,
         4,
         {}},
        {"replay marker in an old log",
         {sessionMeta(0), sessionMeta(1, "S0"), toolCall(2, "c1")},
         TurnPhase::unknown,
         -1,
         {}},
    };
    for (const auto& c : cases) {
        SessionLogState expected;
        expected.meta = SessionMeta{u"S1"_s, u"/home/u/proj"_s, u"codex-tui"_s, u"0.169.0"_s};
        expected.phase = c.phase;
        if (c.since >= 0)
            expected.phaseSince = timeAt(c.since);
        expected.lastAgentMessageLine = c.message;
        EXPECT_EQ(readWhole(c.lines), expected) << c.name << " (read at once)";
        EXPECT_EQ(readLineByLine(c.lines), expected) << c.name << " (read line by line)";
    }
}

// Logs of the real Codex CLI 0.169.0, cut after each stage. "exec": `codex
// exec`, resumed three times, the third run killed while its command ran.
// "tui": the TUI asks to approve a command, then is interrupted (Esc) during
// one, quits, and is resumed for one more turn.
TEST(SessionLogReader, RealLogsAtEachStage) {
    const QList<QByteArray> exec = readFixture("rollout-resumed-0.169.0.jsonl").split('\n');
    const QList<QByteArray> tui = readFixture("rollout-tui-0.169.0.jsonl").split('\n');
    const struct {
        const char* name;
        const QList<QByteArray>& lines;
        int lineCount;
        TurnPhase phase;
    } stages[] = {
        {"exec: turn started", exec, 2, TurnPhase::running},
        {"exec: command requested", exec, 10, TurnPhase::awaitingToolOutput},
        {"exec: command ended, output not yet written", exec, 12, TurnPhase::awaitingToolOutput},
        {"exec: output written", exec, 13, TurnPhase::running},
        {"exec: turn complete", exec, 19, TurnPhase::idle},
        {"exec: resumed, settings applied", exec, 20, TurnPhase::idle},
        {"exec: killed while its command ran", exec, 41, TurnPhase::awaitingToolOutput},
        {"exec: resumed again, a new turn", exec, 43, TurnPhase::running},
        {"exec: last turn complete", exec, 56, TurnPhase::idle},
        {"tui: approval asked", tui, 11, TurnPhase::awaitingToolOutput},
        {"tui: approved, turn complete", tui, 19, TurnPhase::idle},
        {"tui: interrupted during a command", tui, 30, TurnPhase::idle},
        {"tui: resumed", tui, 32, TurnPhase::idle},
        {"tui: resumed turn running its command", tui, 38, TurnPhase::awaitingToolOutput},
        {"tui: resumed turn complete", tui, 47, TurnPhase::idle},
    };
    for (const auto& stage : stages) {
        const LogFile log;
        log.append(stage.lines.first(stage.lineCount).join('\n') + '\n');
        const SessionLogState state = SessionLogReader(log.path()).update();
        EXPECT_EQ(state.phase, stage.phase) << stage.name;
        ASSERT_TRUE(state.meta) << stage.name;
        EXPECT_EQ(state.meta->originator, &stage.lines == &exec ? u"codex_exec" : u"codex-tui")
            << stage.name;
        EXPECT_EQ(state.meta->cwd, u"/tmp/codexrun/proj") << stage.name;
    }
    const LogFile log;
    log.append(tui.join('\n'));
    EXPECT_EQ(SessionLogReader(log.path()).update().lastAgentMessageLine,
              u"All done: the \"task_complete\" check passed.");
}

// Appended in pieces of several sizes, lines split anywhere: after each update
// the reader tells what a fresh reader of the same bytes tells.
TEST(SessionLogReader, IncrementalReadsMatchAFreshRead) {
    for (const char* fixture : {"rollout-resumed-0.169.0.jsonl", "rollout-tui-0.169.0.jsonl"}) {
        const QByteArray bytes = readFixture(fixture);
        for (const qsizetype step : {qsizetype(97), qsizetype(1000), qsizetype(7919)}) {
            const LogFile log;
            SessionLogReader reader(log.path());
            for (qsizetype at = 0; at < bytes.size(); at += step) {
                log.append(bytes.sliced(at, std::min(step, bytes.size() - at)));
                const SessionLogState incremental = reader.update();
                ASSERT_EQ(incremental, SessionLogReader(log.path()).update())
                    << fixture << ", step " << step << ", at " << at;
            }
            EXPECT_EQ(reader.update().phase, TurnPhase::idle) << fixture << ", step " << step;
        }
    }
}

} // namespace
} // namespace brenvik
