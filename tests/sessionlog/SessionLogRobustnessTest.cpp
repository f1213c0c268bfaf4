#include "SessionLogTestSupport.h"
#include "sessionlog/LogLineScanner.h"
#include "sessionlog/SessionLogReader.h"

#include <QLoggingCategory>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

namespace brenvik {
namespace {

using namespace test;

const QByteArray kOpenTurn = sessionMeta(0) + taskStarted(1) + toolCall(2, "c1");
const QByteArray kClosedTurn = kOpenTurn + toolOutput(3, "c1") + taskComplete(4, R"("Done")");

QByteArray junk(qsizetype size, unsigned seed) {
    std::mt19937 random(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& c : bytes)
        c = char(random());
    return bytes;
}

// Hostile logs: each case builds one with a reader following it, changes it,
// and says what the next update must tell. The sanitizers of the test build
// turn any out-of-bounds access or overflow into a failure.
TEST(SessionLogRobustness, HostileLogs) {
    const QByteArray fiveMegabytes(5 * 1024 * 1024, 'x');
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
        {"a 5 MB tool output", kOpenTurn,
         [&](const LogFile& log) { log.append(toolOutput(3, "c1", '"' + fiveMegabytes + '"')); },
         TurnPhase::running},
        {"a 5 MB tool call, then its output", sessionMeta(0) + taskStarted(1),
         [&](const LogFile& log) {
             log.append(toolCall(2, "c" + fiveMegabytes) + toolOutput(3, "c" + fiveMegabytes));
         },
         TurnPhase::running},
        {"binary junk between good lines", kOpenTurn,
         [](const LogFile& log) { log.append(junk(20000, 1) + '\n' + toolOutput(3, "c1")); },
         TurnPhase::running},
        {"unknown events and types", kOpenTurn,
         [](const LogFile& log) {
             log.append(line(3, "event_msg", R"({"type":"task_paused_v9"})") +
                        line(4, "world_state", R"({"full":true})") +
                        line(5, "future_item", R"({"type":"task_complete"})") +
                        R"({"type":"event_msg","payload":["task_complete"]})"
                        "\n" +
                        R"({"type":7,"payload":{"type":"task_complete"}})"
                        "\n");
         },
         TurnPhase::awaitingToolOutput},
        {"invalid UTF-8 everywhere",
         {},
         [](const LogFile& log) {
             log.append(sessionMeta(0).replace("proj", "pr\xff\xfe") + taskStarted(1) +
                        agentMessage(2, "\"\xc3\x28 \xed\xa0\x80 \\ud800 done\"") +
                        "\xf8\x88\x80\x80\x80\n");
         },
         TurnPhase::running},
        {"deep nesting", kOpenTurn,
         [](const LogFile& log) {
             log.append(R"({"timestamp":"x","deep":)" + QByteArray(200000, '[') +
                        R"(,"type":"event_msg","payload":{"type":"task_complete"}})"
                        "\n" +
                        toolOutput(4, "c1"));
         },
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

} // namespace
} // namespace brenvik
