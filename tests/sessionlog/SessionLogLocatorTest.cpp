// Finding a session's log: which paths are logs, the readers kept for them,
// and the log each session holds.
#include "sessionlog/SessionLogLocator.h"

#include "SessionLogTestSupport.h"
#include "sessionlog/SessionLogCache.h"
#include "sessionlog/SessionLogPath.h"

#include <QFile>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

using namespace test;

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
        {u"/home/u/proj/rollout-1.jsonl", false},
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
