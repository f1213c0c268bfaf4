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

std::optional<TurnPhase> phaseOf(const std::optional<SessionLogState>& state) {
    if (!state)
        return std::nullopt;
    return state->phase;
}

TEST(SessionLogLocator, FindsTheLogAnExecSessionHolds) {
    const FakeProc proc;
    const QString log = proc.logPath("rollout-2026-11-23T13-00-00-S1.jsonl");
    proc.append(log, sessionMeta(0) + taskStarted(1));
    proc.open(101, 44, log);
    SessionLogLocator locator(proc.root());
    const auto states = locator.statesOf({execSession(100, 101, 0)});
    ASSERT_EQ(states.size(), 1);
    EXPECT_EQ(phaseOf(states[0]), TurnPhase::running);
}

// codex exec closes its log when its turn is over and may live on, writing
// its answer: the log it held still tells that the turn is over.
TEST(SessionLogLocator, KeepsTheLogASessionClosedWhileItLives) {
    const FakeProc proc;
    const QString log = proc.logPath("rollout-2026-11-23T13-00-00-S1.jsonl");
    proc.append(log, sessionMeta(0) + taskStarted(1));
    proc.open(101, 44, log);
    SessionLogLocator locator(proc.root());
    EXPECT_EQ(phaseOf(locator.statesOf({execSession(100, 101, 0)})[0]), TurnPhase::running);

    proc.append(log, taskComplete(20));
    proc.close(101, 44);
    EXPECT_EQ(phaseOf(locator.statesOf({execSession(100, 101, 0)})[0]), TurnPhase::idle);
    EXPECT_EQ(phaseOf(locator.statesOf({execSession(100, 101, 0)})[0]), TurnPhase::idle);

    // The same PID started anew is another session, which has no log yet.
    EXPECT_EQ(phaseOf(locator.statesOf({execSession(100, 101, 30)})[0]), std::nullopt);
}

TEST(SessionLogLocator, ForgetsTheLogOfASessionThatWentAway) {
    const FakeProc proc;
    const QString log = proc.logPath("rollout-2026-11-23T13-00-00-S1.jsonl");
    proc.append(log, sessionMeta(0) + taskStarted(1) + taskComplete(2));
    proc.open(101, 44, log);
    SessionLogLocator locator(proc.root());
    EXPECT_EQ(phaseOf(locator.statesOf({execSession(100, 101, 0)})[0]), TurnPhase::idle);
    proc.close(101, 44);
    EXPECT_TRUE(locator.statesOf({}).isEmpty());
    EXPECT_EQ(phaseOf(locator.statesOf({execSession(100, 101, 0)})[0]), std::nullopt);
}

// A TUI's logs stay open in the shared service; one it no longer gets (a
// second TUI opened in its directory) is not kept.
TEST(SessionLogLocator, KeepsNoClosedLogForATerminalSession) {
    const FakeProc proc;
    const QString log = proc.logPath("rollout-2026-11-23T13-00-00-S1.jsonl");
    proc.append(log, sessionMeta(0) + taskStarted(1));
    proc.open(900, 44, log);
    DetectedProcessSample tui = execSession(100, 900, 0);
    tui.interactive = true;
    SessionLogLocator locator(proc.root());
    EXPECT_EQ(phaseOf(locator.statesOf({tui})[0]), TurnPhase::running);
    proc.close(900, 44);
    EXPECT_EQ(phaseOf(locator.statesOf({tui})[0]), std::nullopt);
}

} // namespace
} // namespace brenvik
