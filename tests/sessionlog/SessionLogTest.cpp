// Session logs: which paths are logs, reading one (also when it is hostile),
// and finding the log each session holds.
#include "../detection/DetectionTestSupport.h"
#include "sessionlog/LogLineScanner.h"
#include "sessionlog/SessionLogCache.h"
#include "sessionlog/SessionLogLocator.h"
#include "sessionlog/SessionLogPath.h"
#include "sessionlog/SessionLogReader.h"

#include <QFile>
#include <QLoggingCategory>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <sys/stat.h>

namespace brenvik {

inline void PrintTo(TurnPhase phase, std::ostream* out) {
    constexpr const char* names[] = {"unknown", "notStarted", "idle", "running",
                                     "awaitingToolOutput"};
    *out << names[int(phase)];
}

inline void PrintTo(const SessionLogState& state, std::ostream* out) {
    PrintTo(state.phase, out);
    *out << " since "
         << (state.phaseSince ? state.phaseSince->toString(Qt::ISODateWithMs).toStdString() : "-")
         << ", message "
         << (state.lastAgentMessageLine ? state.lastAgentMessageLine->toStdString() : "-")
         << ", meta " << (state.meta ? state.meta->id.toStdString() : "-");
}

namespace {

using namespace test;
using namespace Qt::StringLiterals;

// Rollout lines shaped as Codex 0.169.0 writes them, with their long values
// left out. Line `second` carries the timestamp 13:00:<second>.
QDateTime timeAt(int second) {
    return QDateTime(QDate(2026, 11, 23), QTime(13, second / 60, second % 60, 250), Qt::UTC);
}

QByteArray line(int second, const QByteArray& type, const QByteArray& payload) {
    return R"({"timestamp":")" + timeAt(second).toString(Qt::ISODateWithMs).toLatin1() +
           R"(","ordinal":)" + QByteArray::number(second) + R"(,"type":")" + type +
           R"(","payload":)" + payload + "}\n";
}

QByteArray sessionMeta(int second, const QByteArray& id = "S1") {
    return line(second, "session_meta",
                R"({"session_id":")" + id + R"(","id":")" + id +
                    R"(","cwd":"/home/u/proj","originator":"codex-tui","cli_version":"0.169.0",)"
                    R"("base_instructions":{"text":"You are a coding agent…"}})");
}
QByteArray taskStarted(int second, const QByteArray& turn = "T1") {
    return line(second, "event_msg",
                R"({"type":"task_started","turn_attribution":{"turn_id":")" + turn +
                    R"("},"turn_id":")" + turn + R"(","model_context_window":258400})");
}
QByteArray taskComplete(int second, const QByteArray& messageJson = "null") {
    return line(second, "event_msg",
                R"({"type":"task_complete","turn_id":"T1","last_agent_message":)" + messageJson +
                    R"(,"duration_ms":3320})");
}
QByteArray agentMessage(int second, const QByteArray& messageJson) {
    return line(second, "event_msg", R"({"type":"agent_message","message":)" + messageJson + "}");
}
QByteArray toolCall(int second, const QByteArray& callId,
                    const QByteArray& type = "function_call") {
    return line(second, "response_item",
                R"({"type":")" + type +
                    R"(","id":"fc_1","name":"exec_command",)"
                    R"("arguments":"{\"cmd\": \"make test\"}","call_id":")" +
                    callId + R"("})");
}
QByteArray toolOutput(int second, const QByteArray& callId,
                      const QByteArray& outputJson = R"("Process exited with code 0")",
                      const QByteArray& type = "function_call_output") {
    return line(second, "response_item",
                R"({"type":")" + type + R"(","id":"fco_1","call_id":")" + callId +
                    R"(","output":)" + outputJson + "}");
}
QByteArray tokenCount(int second,
                      const QByteArray& info = R"({"total_token_usage":{"input_tokens":10}})",
                      const QByteArray& rateLimits = "null") {
    return line(second, "event_msg",
                R"({"type":"token_count","info":)" + info + R"(,"rate_limits":)" + rateLimits +
                    "}");
}

// A log file in a private scratch folder, written the way Codex writes it.
class LogFile {
public:
    explicit LogFile(const char* name = "rollout-2026-11-23T13-00-00-S1.jsonl")
        : m_path(m_dir.path(u"sessions/"_s + QLatin1StringView(name))) {}

    [[nodiscard]] const QString& path() const { return m_path; }
    void append(const QByteArray& bytes) const { m_dir.write(m_path, bytes, true); }
    // Replaces the file by another one (a new inode), as a rotation does.
    void replace(const QByteArray& bytes) const {
        QFile::remove(m_path);
        QFile::rename(m_dir.write(m_path + u".next", bytes), m_path);
    }
    void truncate(qint64 size) const { QFile::resize(m_path, size); }

private:
    ScratchDir m_dir{"sessions"};
    QString m_path;
};

QByteArray readFixture(const char* name) {
    QFile file(qEnvironmentVariable("BRENVIK_SOURCE_DIR") + u"/tests/sessionlog/data/" +
               QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing fixture %s", name);
    return file.readAll();
}

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
    QString text = QString::fromStdString(::testing::PrintToString(state.phase));
    if (state.phaseSince)
        text += u'@' + QString::number(timeAt(0).secsTo(*state.phaseSince));
    if (state.lastAgentMessageLine)
        text += u": " + *state.lastAgentMessageLine;
    return text;
}

TEST(SessionLogReader, PhaseFollowsTheTurn) {
    // Each log begins with session_meta, the line of second 0.
    const struct {
        const char* name;
        QString expected;
        QList<QByteArray> lines;
    } cases[] = {
        {"session_meta only: no turn yet", u"notStarted@0"_s, {}},
        {"parallel calls, one answered, and output of an unknown call",
         u"awaitingToolOutput@2"_s,
         {taskStarted(1), toolCall(2, "c1"), toolCall(3, "c2"), toolOutput(4, "c2"),
          toolOutput(5, "c9")}},
        {"custom tool call answered, then a local shell call",
         u"awaitingToolOutput@4"_s,
         {taskStarted(1), toolCall(2, "c1", "custom_tool_call"),
          toolOutput(3, "c1", R"("ok")", "custom_tool_call_output"),
          toolCall(4, "c2", "local_shell_call")}},
        {"task_complete",
         u"idle@4: Fixed the tests."_s,
         {taskStarted(1), toolCall(2, "c1"), toolOutput(3, "c1"),
          taskComplete(4, R"("Fixed the tests.\nAll 12 pass.")")}},
        {"turn_aborted while a call waits",
         u"idle@3"_s,
         {taskStarted(1), toolCall(2, "c1"),
          line(3, "event_msg",
               R"({"type":"turn_aborted","turn_id":"T1","reason":"interrupted"})")}},
        {"agent_message kept when task_complete has none",
         u"idle@3: Done: été 😀"_s,
         {taskStarted(1), agentMessage(2, R"("\n  Done: \u00e9t\u00e9 \ud83d\ude00\n")"),
          taskComplete(3)}},
        {"a new turn forgets the last message",
         u"running@3"_s,
         {taskStarted(1), taskComplete(2, R"("old")"), taskStarted(3, "T2")}},
        {"long message cut to 120 characters",
         u"idle@2: "_s + QString(119, u'x') + u'…',
         {taskStarted(1), taskComplete(2, '"' + QByteArray(200, 'x') + '"')}},
        {"old Codex: no task_started",
         u"unknown: Hello"_s,
         {line(1, "response_item",
               R"({"type":"message","role":"user","content":[{"type":"input_text","text":"hi"}]})"),
          toolCall(2, "c1"), toolOutput(3, "c1"), agentMessage(4, R"("Hello")")}},
        {"resumed after a crash: the new turn supersedes the orphan",
         u"running@3"_s,
         {taskStarted(1), toolCall(2, "c1"), taskStarted(3, "T2")}},
        {"replay marker after an open turn",
         u"idle@3"_s,
         {taskStarted(1), toolCall(2, "c1"), sessionMeta(3, "S0"), tokenCount(4)}},
        {"replay marker, then a live turn",
         u"awaitingToolOutput@4"_s,
         {taskStarted(1), sessionMeta(2, "S0"), taskStarted(3, "T2"), toolCall(4, "c1")}},
        {"replay marker in an old log", u"unknown"_s, {sessionMeta(1, "S0"), toolCall(2, "c1")}},
    };
    const SessionMeta meta{u"S1"_s, u"/home/u/proj"_s, u"codex-tui"_s, u"0.169.0"_s};
    for (const auto& c : cases) {
        const QList<QByteArray> lines = QList{sessionMeta(0)} + c.lines;
        const SessionLogState whole = readWhole(lines);
        EXPECT_EQ(brief(whole), c.expected) << c.name;
        EXPECT_EQ(whole.meta, meta) << c.name;
        EXPECT_EQ(readLineByLine(lines), whole) << c.name << ": read line by line";
    }
}

// Logs of the real Codex CLI, cut after each stage (by its line count).
// `codex exec` 0.169.0, resumed three times: turn started (2), command
// requested (10), command ended with its output not yet written (12), output
// written (13), turn complete (19), resumed with settings applied (20), killed
// while its command ran (41), resumed again for a new turn (43), last turn
// complete (56). The TUI 0.169.0 asks to approve a command (11), approved and
// turn complete (19), then is interrupted (Esc) during one (30), quits, is
// resumed (32) for one more turn that runs its command (38) and completes
// (47). The TUI 0.130.0: first answer written (11), turn complete (12); in
// the second turn a message and a tool call in one response (20), the final
// answer before the turn is complete (26), complete (27). `codex exec` 0.80.0
// writes no turn events: context written but no prompt yet (4), prompt (5),
// response opened (7), a message before a tool call (9), tool call (11), tool
// output (12), next response opened (14), final answer before the response
// is complete (16), response complete (17).
TEST(SessionLogReader, RealLogsAtEachStage) {
    const struct {
        const char* fixture;
        const char16_t* originator;
        int modelFrom; // the stage from which a turn_context has named the model
        // "LINES: PHASE[, TOKENS tokens]": the log cut after LINES lines, and
        // the session's total tokens once there are any.
        std::vector<const char*> stages;
    } logs[] = {
        {"rollout-resumed-0.169.0.jsonl",
         u"codex_exec",
         10,
         {"2: running", "10: awaitingToolOutput", "12: awaitingToolOutput", "13: running",
          "19: idle, 30 tokens", "20: idle, 30 tokens", "41: awaitingToolOutput, 60 tokens",
          "43: running, 60 tokens", "56: idle, 90 tokens"}},
        {"rollout-tui-0.169.0.jsonl",
         u"codex-tui",
         0,
         {"11: awaitingToolOutput", "19: idle, 30 tokens", "30: idle, 45 tokens",
          "32: idle, 45 tokens", "38: awaitingToolOutput, 45 tokens", "47: idle, 75 tokens"}},
        {"rollout-tui-0.130.0.jsonl",
         u"codex-tui",
         0,
         {"11: running, 2 tokens", "12: idle, 2 tokens", "20: awaitingToolOutput, 2 tokens",
          "26: running, 6 tokens", "27: idle, 6 tokens"}},
        {"rollout-exec-0.80.0.jsonl",
         u"codex_exec",
         7,
         {"4: notStarted", "5: running", "7: running", "9: running",
          "11: awaitingToolOutput, 2 tokens", "12: running, 2 tokens", "14: running, 2 tokens",
          "16: running, 2 tokens", "17: idle, 4 tokens"}},
    };
    for (const auto& log : logs) {
        const QList<QByteArray> lines = readFixture(log.fixture).split('\n');
        for (const char* stage : log.stages) {
            SCOPED_TRACE(std::string(log.fixture) + ' ' + stage);
            const int lineCount = QByteArray(stage).split(':').first().toInt();
            const LogFile file;
            file.append(lines.first(lineCount).join('\n') + '\n');
            const SessionLogState state = SessionLogReader(file.path()).update();
            std::string brief =
                std::to_string(lineCount) + ": " + ::testing::PrintToString(state.phase);
            if (state.tokens)
                brief += ", " + std::to_string(state.tokens->totalTokens) + " tokens";
            EXPECT_EQ(brief, stage);
            ASSERT_TRUE(state.meta);
            EXPECT_EQ(state.meta->originator, log.originator);
            EXPECT_EQ(state.meta->cwd, u"/tmp/codexrun/proj");
            EXPECT_EQ(state.model,
                      lineCount >= log.modelFrom ? std::optional(u"mock-model"_s) : std::nullopt);
            EXPECT_FALSE(state.rateLimits); // the fake sent no limits
        }
    }
    const LogFile log;
    log.append(readFixture("rollout-tui-0.169.0.jsonl"));
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
        }
    }
}

QByteArray info(const QByteArray& total, const QByteArray& last, const QByteArray& window) {
    return R"({"total_token_usage":{"input_tokens":1,"total_tokens":)" + total +
           R"(},"last_token_usage":{"total_tokens":)" + last + R"(},"model_context_window":)" +
           window + "}";
}

QByteArray limits(const QByteArray& primary, const QByteArray& secondary = "null",
                  const QByteArray& rest = R"("plan_type":"plus","rate_limit_reached_type":null)") {
    return R"({"limit_id":"codex","primary":)" + primary + R"(,"secondary":)" + secondary +
           R"(,"credits":null,)" + rest + "}";
}

// The figures as the cases state them.
std::string figures(const SessionLogState& state) {
    QString text;
    if (state.tokens) {
        text += QString::number(state.tokens->totalTokens) + u" tokens";
        if (const auto left = contextLeftPercent(*state.tokens))
            text += u", " + QString::number(*left) + u"% left";
    }
    if (state.rateLimits) {
        const auto window = [](const std::optional<RateLimitWindow>& w) -> QString {
            if (!w)
                return QStringLiteral("-");
            return QString::number(w->usedPercent) + u'/' +
                   (w->windowMinutes ? QString::number(*w->windowMinutes) : u"?"_qs) + u'/' +
                   (w->resetsAt ? QString::number(w->resetsAt->toSecsSinceEpoch()) : u"?"_qs);
        };
        text += u" limits " + window(state.rateLimits->primary) + u' ' +
                window(state.rateLimits->secondary) + u' ' + state.rateLimits->planType + u' ' +
                state.rateLimits->reachedType + u'@' +
                QString::number(timeAt(0).secsTo(state.rateLimits->observedAt));
    }
    return text.toStdString();
}

// Each case's figures follow figures that parse (100 tokens of 1000, 5 h at
// 10 %): what does not parse leaves those standing.
TEST(UsageFigures, HostileAndRealFigures) {
    const QByteArray good =
        tokenCount(2, info("100", "100", "1000"),
                   limits(R"({"used_percent":10,"window_minutes":300,"resets_at":1900000000})"));
    const std::string before = "100 tokens, 90% left limits 10/300/1900000000 - plus @2";
    const QByteArray primary42 =
        R"({"used_percent":42.5,"window_minutes":300,"resets_at":1900000100})";
    const struct {
        const char* name;
        QByteArray line;
        std::string expected;
    } cases[] = {
        {"both figures",
         tokenCount(3, info("500", "250", "1000"),
                    limits(primary42,
                           R"({"used_percent":13,"window_minutes":10080,"resets_at":1900500000})",
                           R"("plan_type":"pro","rate_limit_reached_type":"rate_limit_reached")")),
         "500 tokens, 75% left limits 42.5/300/1900000100 13/10080/1900500000 pro "
         "rate_limit_reached@3"},
        {"response opened: info null, no windows", tokenCount(3, "null", limits("null")), before},
        {"no window: unknown context", tokenCount(3, info("7", "7", "null"), limits("null")),
         "7 tokens limits 10/300/1900000000 - plus @2"},
        {"context beyond the window", tokenCount(3, info("9", "5000", "1000"), "null"),
         "9 tokens, 0% left limits 10/300/1900000000 - plus @2"},
        {"window without reset time or length",
         tokenCount(3, "null", limits(R"({"used_percent":96})")),
         "100 tokens, 90% left limits 96/?/? - plus @3"},
        {"negative tokens", tokenCount(3, info("-5", "5", "1000"), "null"), before},
        {"fractional tokens", tokenCount(3, info("5.5", "5", "1000"), "null"), before},
        {"tokens as a string", tokenCount(3, info(R"("5")", "5", "1000"), "null"), before},
        {"zero window", tokenCount(3, info("5", "5", "0"), "null"), before},
        {"percent over 100", tokenCount(3, "null", limits(R"({"used_percent":1e9})")), before},
        {"reset time huge", tokenCount(3, "null", limits(R"({"used_percent":5,"resets_at":1e30})")),
         before},
        {"one good window, one broken",
         tokenCount(3, "null", limits(primary42, R"({"used_percent":true})")), before},
        {"rate_limits a string", tokenCount(3, "null", R"("full")"), before},
        {"payload cut off", tokenCount(3, info("5", "5", "1000"), "null").chopped(10) + "\n",
         before},
    };
    for (const auto& c : cases) {
        const QList<QByteArray> lines{sessionMeta(0), taskStarted(1), good, c.line};
        EXPECT_EQ(figures(readWhole(lines)), c.expected) << c.name;
        EXPECT_EQ(figures(readLineByLine(lines)), c.expected) << c.name << ", read line by line";
    }
}

const QByteArray kOpenTurn = sessionMeta(0) + taskStarted(1) + toolCall(2, "c1");
const QByteArray kClosedTurn = kOpenTurn + toolOutput(3, "c1") + taskComplete(4, R"("Done")");

// Hostile logs: each case builds one with a reader following it, changes it,
// and says what the next update must tell. The sanitizers of the test build
// turn any out-of-bounds access or overflow into a failure.
TEST(SessionLogRobustness, HostileLogs) {
    const QByteArray fiveMegabytes(5 * 1024 * 1024, 'x');
    const auto append = [](QByteArray bytes) {
        return [bytes](const LogFile& log) { log.append(bytes); };
    };
    const struct {
        const char* name;
        QByteArray before; // written, then read once
        std::function<void(const LogFile&)> change;
        TurnPhase phase;
    } cases[] = {
        {"truncated into its open turn", kClosedTurn,
         [](const LogFile& log) { log.truncate(kOpenTurn.size()); }, TurnPhase::awaitingToolOutput},
        {"truncated, then grown past the old size", kOpenTurn,
         [](const LogFile& log) {
             log.truncate(0);
             QByteArray longer = sessionMeta(0);
             while (longer.size() < 2 * kOpenTurn.size())
                 longer += tokenCount(1);
             log.append(longer);
         },
         TurnPhase::notStarted},
        {"replaced by another log", kOpenTurn,
         [](const LogFile& log) { log.replace(sessionMeta(0) + taskStarted(5)); },
         TurnPhase::running},
        {"replaced by a FIFO without a writer", kOpenTurn,
         [](const LogFile& log) {
             QFile::remove(log.path());
             ::mkfifo(QFile::encodeName(log.path()).constData(), 0600);
         },
         TurnPhase::unknown},
        {"a 5 MB tool output", kOpenTurn, append(toolOutput(3, "c1", '"' + fiveMegabytes + '"')),
         TurnPhase::running},
        {"a 5 MB tool call, then its output", sessionMeta(0) + taskStarted(1),
         append(toolCall(2, "c" + fiveMegabytes) + toolOutput(3, "c" + fiveMegabytes)),
         TurnPhase::running},
        {"unknown events and types", kOpenTurn,
         append(line(3, "event_msg", R"({"type":"task_paused_v9"})") +
                line(4, "world_state", R"({"full":true})") +
                line(5, "future_item", R"({"type":"task_complete"})") +
                R"({"type":"event_msg","payload":["task_complete"]})"
                "\n" +
                R"({"type":7,"payload":{"type":"task_complete"}})"
                "\n"),
         TurnPhase::awaitingToolOutput},
        {"invalid UTF-8 everywhere",
         {},
         append(sessionMeta(0).replace("proj", "pr\xff\xfe") + taskStarted(1) +
                agentMessage(2, "\"\xc3\x28 \xed\xa0\x80 \\ud800 done\"") +
                "\xf8\x88\x80\x80\x80\n"),
         TurnPhase::running},
        {"deep nesting", kOpenTurn,
         append(R"({"timestamp":"x","deep":)" + QByteArray(200000, '[') +
                R"(,"type":"event_msg","payload":{"type":"task_complete"}})"
                "\n" +
                toolOutput(4, "c1")),
         TurnPhase::running},
        {"last turn event beyond the look-back", kOpenTurn,
         [](const LogFile& log) {
             QByteArray filler;
             while (filler.size() < 17 * 1024 * 1024)
                 filler += tokenCount(5);
             log.replace(kOpenTurn + filler);
         },
         TurnPhase::unknown},
    };
    for (const auto& c : cases) {
        const LogFile log;
        log.append(c.before);
        SessionLogReader reader(log.path());
        (void)reader.update();
        c.change(log);
        const SessionLogState followed = reader.update();
        EXPECT_EQ(followed.phase, c.phase) << c.name << " (followed)";
        EXPECT_EQ(SessionLogReader(log.path()).update().phase, c.phase) << c.name << " (fresh)";

        // Good lines bring it back.
        if (const QFileInfo file(log.path()); !file.exists() || file.isFile()) {
            log.append("\n" + taskStarted(9, "T9"));
            EXPECT_EQ(reader.update().phase, TurnPhase::running) << c.name << " (recovered)";
        }
    }
}

// A log deleted while Codex holds it open stays readable through the writer's
// /proc/PID/fd link, and keeps growing there.
TEST(SessionLogRobustness, DeletedWhileOpen) {
    const LogFile log;
    log.append(kOpenTurn);
    QFile writer(log.path());
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly | QIODevice::Append));
    ASSERT_TRUE(QFile::remove(log.path()));
    SessionLogReader byPath(log.path());
    SessionLogReader byLink(QStringLiteral("/proc/self/fd/%1").arg(writer.handle()));
    EXPECT_EQ(byPath.update().phase, TurnPhase::unknown);
    EXPECT_EQ(byLink.update().phase, TurnPhase::awaitingToolOutput);
    writer.write(toolOutput(3, "c1"));
    writer.flush();
    EXPECT_EQ(byLink.update().phase, TurnPhase::running);
}

// A log that cannot be read is logged once while that lasts, not at every
// refresh, and once more when it fails again after a good read.
TEST(SessionLogRobustness, AFailureIsLoggedOncePerCause) {
    static QStringList messages;
    QLoggingCategory::setFilterRules(QStringLiteral("brenvik.*.debug=true"));
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& message) { messages << message; });
    const LogFile log; // not written yet: missing
    SessionLogReader reader(log.path());
    for (int refresh = 0; refresh < 5; ++refresh)
        EXPECT_EQ(reader.update().phase, TurnPhase::unknown);
    log.append(kOpenTurn);
    EXPECT_EQ(reader.update().phase, TurnPhase::awaitingToolOutput);
    ASSERT_TRUE(QFile::remove(log.path()));
    for (int refresh = 0; refresh < 5; ++refresh)
        EXPECT_EQ(reader.update().phase, TurnPhase::unknown);
    qInstallMessageHandler(previous);
    QLoggingCategory::setFilterRules({});
    ASSERT_EQ(messages.size(), 2) << messages.join(u'\n').toStdString();
    EXPECT_TRUE(messages[0].contains(log.path())) << messages[0].toStdString();
}

// Arbitrary bytes and mutated real lines through the line scanner.
TEST(SessionLogRobustness, ArbitraryLinesNeverBreakTheScanner) {
    const QByteArray seeds[] = {
        sessionMeta(0).chopped(1),
        taskComplete(1, R"("a\"b\\c\u00e9\ud83d\ude00")").chopped(1),
        toolOutput(2, "c1", R"({"a":[1,{"b":null}],"c":-1.5e3})").chopped(1),
        agentMessage(3, R"("\u12")").chopped(1),
    };
    fuzz(seeds, R"("{}[]:,\u)", 40000, [](const QByteArray& input, int i) {
        const LogLineEvent event = scanLogLine(input, i % 5 == 0);
        for (const QByteArrayView field : {event.timestamp, event.callId, event.message, event.cwd})
            ASSERT_TRUE(field.isEmpty() || (field.data() >= input.constData() &&
                                            field.data() + field.size() <= input.constEnd()))
                << input.toHex().constData();
        (void)jsonStringText(event.message);
    });
}

TEST(SessionLogPath, Cases) {
    const struct {
        const char16_t* path;
        bool expected;
        const char16_t* codexHome = u"";
    } cases[] = {
        {u"/home/u/.codex/sessions/2026/11/23/rollout-2026-11-23T13-27-26-01a2.jsonl (deleted)",
         true, u"/home/u/.codex"},
        {u"/work/sessions/x/sessions/2026/01/02/rollout-x.jsonl", true, u"/work/sessions/x"},
        {u"/sessions/2026/01/02/rollout-x.jsonl", true, u"/"},
        {u"/home/u/.codex/sessions/2026/11/23/rollout-2026-11-23T13-27-26-01a2.jsonl.zst", false},
        {u"/home/u/.codex/archived_sessions/rollout-2026-11-23T13-27-26-01a2.jsonl", false},
        {u"/home/u/.codex/sessions/2026/11/23/rollout-.jsonl", false},
        {u"/home/u/.codex/sessions/2026/11/23/notes-rollout-1.jsonl", false},
        {u"sessions/2026/11/23/rollout-1.jsonl", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isSessionLogPath(QStringView(c.path)), c.expected)
            << QString::fromUtf16(c.path).toStdString();
        EXPECT_EQ(codexHomeOf(QStringView(c.path)), QStringView(c.codexHome))
            << QString::fromUtf16(c.path).toStdString();
    }
}

TEST(SessionLogCache, FollowsEachLogAndForgetsTheUnreferenced) {
    const LogFile first, second;
    first.append(sessionMeta(0) + taskStarted(1));
    second.append(sessionMeta(0) + taskStarted(1) + taskComplete(2));
    SessionLogCache cache;
    EXPECT_EQ(cache.stateOf(first.path()).phase, TurnPhase::running);
    EXPECT_EQ(cache.stateOf(second.path()).phase, TurnPhase::idle);
    cache.retainOnly({second.path()});
    EXPECT_EQ(cache.size(), 1);
}

DetectedProcessSample execSession(qint64 pid, qint64 holder, int startedSecond) {
    return DetectedProcessSample{.pid = pid,
                                 .command = QStringLiteral("node codex exec hello"),
                                 .cwd = QStringLiteral("/home/u/proj"),
                                 .startedAt = timeAt(startedSecond),
                                 .logHolderPIDs = {holder}};
}

// One log with a turn begun, held open by process 101 (or 900, the service).
class SessionLogLocatorTest : public ::testing::Test {
protected:
    std::optional<TurnPhase> phaseOf(const DetectedProcessSample& session) {
        const auto states = m_locator.statesOf({session});
        return states.size() == 1 && states[0] ? std::optional(states[0]->phase) : std::nullopt;
    }

    // PID/fd/N: links to the files a process holds open.
    ScratchDir m_proc{"proc"};
    const LogFile m_log;
    SessionLogLocator m_locator{m_proc.path()};
};

// codex exec closes its log when its turn is over and may live on, writing
// its answer: the log it held still tells that the turn is over.
TEST_F(SessionLogLocatorTest, KeepsTheLogASessionClosedWhileItLives) {
    m_log.append(sessionMeta(0) + taskStarted(1));
    m_proc.link(m_log.path(), m_proc.path(101, "fd/44"));
    EXPECT_EQ(phaseOf(execSession(100, 101, 0)), TurnPhase::running);

    m_log.append(taskComplete(20));
    QFile::remove(m_proc.path(101, "fd/44"));
    EXPECT_EQ(phaseOf(execSession(100, 101, 0)), TurnPhase::idle);
    EXPECT_EQ(phaseOf(execSession(100, 101, 0)), TurnPhase::idle);

    // The same PID started anew is another session, which has no log yet.
    EXPECT_EQ(phaseOf(execSession(100, 101, 30)), TurnPhase::notStarted);

    // A refresh that went without the old one forgot its log.
    EXPECT_EQ(phaseOf(execSession(100, 101, 0)), TurnPhase::notStarted);

    // Holders whose files cannot be listed (gone, or another user's) tell nothing.
    EXPECT_EQ(phaseOf(execSession(200, 201, 0)), std::nullopt);
}

// A TUI's log is held by the shared service: before its first turn the
// service holds none for it; where two TUIs share a directory nobody can tell
// which log is whose, and the log it had is not kept.
TEST_F(SessionLogLocatorTest, ATerminalSessionHasNoLogBeforeItsFirstTurn) {
    const LogFile other("rollout-2026-11-23T12-00-00-S0.jsonl");
    other.append(line(0, "session_meta", R"({"id":"S0","cwd":"/home/u/other"})"));
    m_proc.link(other.path(), m_proc.path(900, "fd/3"));
    DetectedProcessSample tui = execSession(100, 900, 0);
    tui.interactive = true;
    EXPECT_EQ(phaseOf(tui), TurnPhase::notStarted);

    m_log.append(sessionMeta(0) + taskStarted(1));
    m_proc.link(m_log.path(), m_proc.path(900, "fd/44"));
    EXPECT_EQ(phaseOf(tui), TurnPhase::running);

    DetectedProcessSample twin = execSession(300, 900, 5);
    twin.interactive = true;
    const auto states = m_locator.statesOf({tui, twin});
    ASSERT_EQ(states.size(), 2);
    EXPECT_FALSE(states[0] || states[1]);
}

} // namespace
} // namespace brenvik
