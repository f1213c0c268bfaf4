#include "sessionlog/SessionLogReader.h"

#include "SessionLogTestSupport.h"

#include <gtest/gtest.h>
#include <sstream>

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

// The state as the cases state it: the phase, the line that set it, and the
// last message after a colon.
QString brief(const SessionLogState& state) {
    std::ostringstream phase;
    PrintTo(state.phase, &phase);
    QString text = QString::fromStdString(phase.str());
    if (state.phaseSince)
        text += u'@' + QString::number(timeAt(0).secsTo(*state.phaseSince));
    if (state.lastAgentMessageLine)
        text += u": " + *state.lastAgentMessageLine;
    return text;
}

TEST(SessionLogReader, PhaseFollowsTheTurn) {
    const QByteArray outputMentioningClose =
        R"("{\"type\":\"event_msg\",\"payload\":{\"type\":\"task_complete\"}}")";
    const struct {
        const char* name;
        QList<QByteArray> lines;
        QString expected;
    } cases[] = {
        {"session_meta only: no turn yet", {sessionMeta(0)}, u"notStarted@0"_s},
        {"turn open",
         {sessionMeta(0), taskStarted(1), userMessage(2, R"("fix it")")},
         u"running@1"_s},
        {"tool call without output",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), tokenCount(3)},
         u"awaitingToolOutput@2"_s},
        {"output arrives",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), toolOutput(3, "c1")},
         u"running@3"_s},
        {"parallel calls, one answered, and output of an unknown call",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), toolCall(3, "c2"), toolOutput(4, "c2"),
          toolOutput(5, "c9")},
         u"awaitingToolOutput@2"_s},
        {"custom tool call answered, then a local shell call",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1", "custom_tool_call"),
          toolOutput(3, "c1", R"("ok")", "custom_tool_call_output"),
          toolCall(4, "c2", "local_shell_call")},
         u"awaitingToolOutput@4"_s},
        {"task_complete",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), toolOutput(3, "c1"),
          taskComplete(4, R"("Fixed the tests.\nAll 12 pass.")")},
         u"idle@4: Fixed the tests."_s},
        {"turn_aborted while a call waits",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), turnAborted(3)},
         u"idle@3"_s},
        {"agent_message kept when task_complete has none",
         {sessionMeta(0), taskStarted(1),
          agentMessage(2, R"("\n  Done: \u00e9t\u00e9 \ud83d\ude00\n")"), taskComplete(3)},
         u"idle@3: Done: été 😀"_s},
        {"a new turn forgets the last message",
         {sessionMeta(0), taskStarted(1), taskComplete(2, R"("old")"), taskStarted(3, "T2")},
         u"running@3"_s},
        {"long message cut to 120 characters",
         {sessionMeta(0), taskStarted(1), taskComplete(2, '"' + QByteArray(200, 'x') + '"')},
         u"idle@2: "_s + QString(119, u'x') + u'…'},
        {"old Codex: no task_started",
         {sessionMeta(0), userMessage(1, R"("hi")"), toolCall(2, "c1"), toolOutput(3, "c1"),
          agentMessage(4, R"("Hello")")},
         u"unknown: Hello"_s},
        {"task_complete inside a tool output and a user message",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"),
          toolOutput(3, "c1", outputMentioningClose),
          userMessage(4, R"("\"type\":\"task_complete\"")")},
         u"running@3"_s},
        {"resumed after a crash: the new turn supersedes the orphan",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), taskStarted(3, "T2")},
         u"running@3"_s},
        {"replay marker after an open turn",
         {sessionMeta(0), taskStarted(1), toolCall(2, "c1"), sessionMeta(3, "S0"), tokenCount(4)},
         u"idle@3"_s},
        {"replay marker, then a live turn",
         {sessionMeta(0), taskStarted(1), sessionMeta(2, "S0"), taskStarted(3, "T2"),
          toolCall(4, "c1")},
         u"awaitingToolOutput@4"_s},
        {"replay marker in an old log",
         {sessionMeta(0), sessionMeta(1, "S0"), toolCall(2, "c1")},
         u"unknown"_s},
    };
    const SessionMeta meta{u"S1"_s, u"/home/u/proj"_s, u"codex-tui"_s, u"0.169.0"_s};
    for (const auto& c : cases) {
        const SessionLogState whole = readWhole(c.lines);
        EXPECT_EQ(brief(whole), c.expected) << c.name;
        EXPECT_EQ(whole.meta, meta) << c.name;
        EXPECT_EQ(readLineByLine(c.lines), whole) << c.name << ": read line by line";
    }
}

// Logs of the real Codex CLI, cut after each stage. "exec": `codex exec`
// 0.169.0, resumed three times, the third run killed while its command ran.
// "tui": the TUI asks to approve a command, then is interrupted (Esc) during
// one, quits, and is resumed for one more turn. "0.130": two TUI turns, the
// second a message and a tool call in one response. "0.80": the same turn
// from `codex exec` 0.80.0, which writes no turn events.
TEST(SessionLogReader, RealLogsAtEachStage) {
    const QList<QByteArray> exec = readFixture("rollout-resumed-0.169.0.jsonl").split('\n');
    const QList<QByteArray> tui = readFixture("rollout-tui-0.169.0.jsonl").split('\n');
    const QList<QByteArray> tui130 = readFixture("rollout-tui-0.130.0.jsonl").split('\n');
    const QList<QByteArray> exec80 = readFixture("rollout-exec-0.80.0.jsonl").split('\n');
    // "phase tokens model": the session's total ("-" for none yet), and the model
    // a turn_context has named.
    const struct {
        const char* name;
        const QList<QByteArray>& lines;
        int lineCount;
        const char* expected;
    } stages[] = {
        {"exec: turn started", exec, 2, "running -"},
        {"exec: command requested", exec, 10, "awaitingToolOutput - mock-model"},
        {"exec: command ended, no output yet", exec, 12, "awaitingToolOutput - mock-model"},
        {"exec: output written", exec, 13, "running - mock-model"},
        {"exec: turn complete", exec, 19, "idle 30 mock-model"},
        {"exec: resumed, settings applied", exec, 20, "idle 30 mock-model"},
        {"exec: killed while its command ran", exec, 41, "awaitingToolOutput 60 mock-model"},
        {"exec: resumed again, a new turn", exec, 43, "running 60 mock-model"},
        {"exec: last turn complete", exec, 56, "idle 90 mock-model"},
        {"tui: approval asked", tui, 11, "awaitingToolOutput - mock-model"},
        {"tui: approved, turn complete", tui, 19, "idle 30 mock-model"},
        {"tui: interrupted during a command", tui, 30, "idle 45 mock-model"},
        {"tui: resumed", tui, 32, "idle 45 mock-model"},
        {"tui: resumed turn running its command", tui, 38, "awaitingToolOutput 45 mock-model"},
        {"tui: resumed turn complete", tui, 47, "idle 75 mock-model"},
        {"0.130: first answer written", tui130, 11, "running 2 mock-model"},
        {"0.130: turn complete", tui130, 12, "idle 2 mock-model"},
        {"0.130: tool call after a message", tui130, 20, "awaitingToolOutput 2 mock-model"},
        {"0.130: final answer, turn not yet complete", tui130, 26, "running 6 mock-model"},
        {"0.130: second turn complete", tui130, 27, "idle 6 mock-model"},
        {"0.80: context written, no prompt yet", exec80, 4, "notStarted -"},
        {"0.80: prompt", exec80, 5, "running -"},
        {"0.80: response opened", exec80, 7, "running - mock-model"},
        {"0.80: a message before a tool call", exec80, 9, "running - mock-model"},
        {"0.80: tool call", exec80, 11, "awaitingToolOutput 2 mock-model"},
        {"0.80: tool output", exec80, 12, "running 2 mock-model"},
        {"0.80: next response opened", exec80, 14, "running 2 mock-model"},
        {"0.80: final answer, response not yet complete", exec80, 16, "running 2 mock-model"},
        {"0.80: response complete", exec80, 17, "idle 4 mock-model"},
    };
    for (const auto& stage : stages) {
        const LogFile log;
        log.append(stage.lines.first(stage.lineCount).join('\n') + '\n');
        const SessionLogState state = SessionLogReader(log.path()).update();
        std::ostringstream phase;
        PrintTo(state.phase, &phase);
        EXPECT_EQ(QString::fromStdString(phase.str()) + u' ' +
                      (state.tokens ? QString::number(state.tokens->totalTokens) : u"-"_s) +
                      (state.model ? u' ' + *state.model : QString()),
                  QString::fromLatin1(stage.expected))
            << stage.name;
        ASSERT_TRUE(state.meta) << stage.name;
        EXPECT_EQ(state.meta->originator,
                  &stage.lines == &tui || &stage.lines == &tui130 ? u"codex-tui" : u"codex_exec")
            << stage.name;
        EXPECT_EQ(state.meta->cwd, u"/tmp/codexrun/proj") << stage.name;
        EXPECT_FALSE(state.rateLimits) << stage.name; // the fake sent no limits
    }

    const LogFile log;
    log.append(tui.join('\n'));
    EXPECT_EQ(SessionLogReader(log.path()).update().lastAgentMessageLine,
              u"All done: the \"task_complete\" check passed.");
}

// Appended in pieces of several sizes, lines split anywhere: after each update
// the reader tells what a fresh reader of the same bytes tells.
TEST(SessionLogReader, IncrementalReadsMatchAFreshRead) {
    for (const char* fixture : {"rollout-resumed-0.169.0.jsonl", "rollout-tui-0.169.0.jsonl",
                                "rollout-tui-0.130.0.jsonl", "rollout-exec-0.80.0.jsonl"}) {
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
