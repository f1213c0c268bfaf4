#include "sessionlog/SessionLogLocator.h"

#include "SessionLogTestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

using namespace test;

// A /proc of its own: PID/fd/N links to the files a process holds open.
class FakeProc {
public:
    FakeProc() { QDir(m_dir.path()).mkpath(QStringLiteral("codex-home/sessions")); }

    [[nodiscard]] QString root() const { return m_dir.filePath(QStringLiteral("proc")); }
    [[nodiscard]] QString logPath(const char* name) const {
        return m_dir.filePath(QStringLiteral("codex-home/sessions/") + QString::fromLatin1(name));
    }
    void append(const QString& path, const QByteArray& bytes) const {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append) ||
            file.write(bytes) != bytes.size())
            qFatal("cannot append to %s", qPrintable(path));
    }
    void open(qint64 pid, int fd, const QString& target) const {
        const QString dir = root() + u'/' + QString::number(pid) + QStringLiteral("/fd");
        QDir().mkpath(dir);
        if (!QFile::link(target, dir + u'/' + QString::number(fd)))
            qFatal("cannot link %s", qPrintable(target));
    }
    void close(qint64 pid, int fd) const {
        QFile::remove(root() + u'/' + QString::number(pid) + QStringLiteral("/fd/") +
                      QString::number(fd));
    }

private:
    QTemporaryDir m_dir{qEnvironmentVariable("BRENVIK_TEST_SCRATCH", QDir::tempPath()) +
                        QStringLiteral("/proc-XXXXXX")};
};

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

    FakeProc m_proc;
    const QString m_log = m_proc.logPath("rollout-2026-11-23T13-00-00-S1.jsonl");
    SessionLogLocator m_locator{m_proc.root()};
};

// codex exec closes its log when its turn is over and may live on, writing
// its answer: the log it held still tells that the turn is over.
TEST_F(SessionLogLocatorTest, KeepsTheLogASessionClosedWhileItLives) {
    m_proc.append(m_log, sessionMeta(0) + taskStarted(1));
    m_proc.open(101, 44, m_log);
    EXPECT_EQ(phaseOf(execSession(100, 101, 0)), TurnPhase::running);

    m_proc.append(m_log, taskComplete(20));
    m_proc.close(101, 44);
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
    const QString other = m_proc.logPath("rollout-2026-11-23T12-00-00-S0.jsonl");
    m_proc.append(other, line(0, "session_meta", R"({"id":"S0","cwd":"/home/u/other"})"));
    m_proc.open(900, 3, other);
    DetectedProcessSample tui = execSession(100, 900, 0);
    tui.interactive = true;
    EXPECT_EQ(phaseOf(tui), TurnPhase::notStarted);

    m_proc.append(m_log, sessionMeta(0) + taskStarted(1));
    m_proc.open(900, 44, m_log);
    EXPECT_EQ(phaseOf(tui), TurnPhase::running);

    DetectedProcessSample twin = execSession(300, 900, 5);
    twin.interactive = true;
    const auto states = m_locator.statesOf({tui, twin});
    ASSERT_EQ(states.size(), 2);
    EXPECT_FALSE(states[0] || states[1]);
}

} // namespace
} // namespace brenvik
