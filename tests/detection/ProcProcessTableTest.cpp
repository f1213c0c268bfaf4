#include "detection/ProcProcessTable.h"

#include "DetectionTestSupport.h"

#include <QDir>
#include <QSet>
#include <gtest/gtest.h>
#include <unistd.h>

namespace brenvik {
namespace {

using namespace std::chrono_literals;

TEST(ProcStatParsing, Cases) {
    const QByteArray tail = " 0 0 0 0 0 0 0 0 0 7 3 0 0 20 0 1 0 900 123 456\n";
    const struct {
        const char* name;
        QByteArray contents;
        std::optional<ProcStat> expected;
    } cases[] = {
        {"plain", "42 (bash) S 1" + tail, ProcStat{42, QStringLiteral("bash"), 'S', 1, 7, 3, 900}},
        {"name with spaces and parentheses", "42 (a) (b c)) R 9" + tail,
         ProcStat{42, QStringLiteral("a) (b c)"), 'R', 9, 7, 3, 900}},
        {"empty name", "42 () Z 0" + tail, ProcStat{42, QString(), 'Z', 0, 7, 3, 900}},
        {"fields missing", "42 (bash) S 1 0 0 0 0 0 0 0 0 0 7 3\n", std::nullopt},
        {"two-letter state", "42 (bash) Ss 1" + tail, std::nullopt},
        {"ppid not a number", "42 (bash) S x" + tail, std::nullopt},
        {"no closing parenthesis", "42 (bash S 1" + tail, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseProcStat(c.contents), c.expected) << c.name;
}

// What the fake /proc holds for one process: its stat and cmdline.
struct FakeProcess {
    qint64 pid;
    QByteArray comm{}; // null: the process is gone
    QByteArray cmdline{};
    quint64 cpuSeconds = 0;
    quint64 startTicks = 1000;
    char state = 'S';
    qint64 ppid = 1;
    quint64 flags = 0;
};

// A /proc look-alike in a scratch folder, read by a source on a clock the test moves.
class ProcSourceTest : public ::testing::Test {
protected:
    void put(const FakeProcess& p) {
        if (p.comm.isNull()) {
            QDir(m_proc.path(QString::number(p.pid))).removeRecursively();
            return;
        }
        m_proc.write(m_proc.path(p.pid, "stat"),
                     QByteArray::number(p.pid) + " (" + p.comm + ") " + p.state + ' ' +
                         QByteArray::number(p.ppid) + " 0 0 0 -1 " + QByteArray::number(p.flags) +
                         " 0 0 0 0 " + QByteArray::number(p.cpuSeconds * m_ticks) +
                         " 0 0 0 20 0 1 0 " + QByteArray::number(p.startTicks) + " 0 0\n");
        m_proc.write(m_proc.path(p.pid, "cmdline"), p.cmdline);
    }
    // Every process of the fake table matters to some session, unless the
    // test says which do.
    void snapshotAfter(std::chrono::milliseconds elapsed,
                       std::optional<QSet<qint64>> ofInterest = std::nullopt) {
        m_now += elapsed;
        if (!ofInterest) {
            ofInterest.emplace();
            for (const QString& name : QDir(m_proc.path()).entryList(QDir::Dirs))
                ofInterest->insert(name.toLongLong());
        }
        m_source.setProcessesOfInterest(*ofInterest);
        m_rows = test::byPID(m_source.snapshot());
    }
    QString command(qint64 pid) {
        return m_rows.contains(pid) ? m_rows[pid].command : u"<none>"_qs;
    }
    double percent(qint64 pid) { return m_rows.contains(pid) ? m_rows[pid].cpuPercent : -1; }

    const quint64 m_ticks = quint64(::sysconf(_SC_CLK_TCK));
    test::ScratchDir m_proc{"fake-proc"};
    std::chrono::steady_clock::time_point m_now{};
    ProcProcessTableSource m_source{m_proc.path(), [this] { return m_now; }};
    QHash<qint64, ObservedProcess> m_rows;
};

TEST_F(ProcSourceTest, RowsFromStatAndCmdline) {
    QDir(m_proc.path()).mkpath(QStringLiteral("self"));
    put({10, "we(ird) )name", "node\0/x/codex\0--fast\0\0"_qba, 3, 1000, 'R', 3});
    put({12, "bad", "a\xff\0b \0\tc\nd\x01\x7f"_qba});
    put({15, "", "nameless", 0, 0});
    m_proc.write(m_proc.path(13, "stat"), "garbage");
    m_proc.write(m_proc.path(14, "status"), "no stat file: vanished");
    snapshotAfter(0ms);

    ASSERT_EQ(m_rows.size(), 3);
    ObservedProcess expected = test::row(10, 3, u"node /x/codex --fast", 0, 3, u"R");
    expected.loweredCommand = expected.command;
    expected.arguments = {u"node"_qs, u"/x/codex"_qs, u"--fast"_qs};
    EXPECT_EQ(m_rows.value(10), expected);
    EXPECT_EQ(command(12), QStringLiteral("a\uFFFD b  ?c d??")) << "controls as ps shows them";
    EXPECT_EQ(command(15), QStringLiteral("nameless"));
}

// Each step writes one process, then takes a snapshot 2 s after the last.
TEST_F(ProcSourceTest, CommandAndCPUFollowedAcrossSnapshots) {
    const quint64 kt = ProcStat::kKernelThreadFlag;
    const struct {
        const char* name;
        FakeProcess process;
        QString command;
        double percent;
    } steps[] = {
        {"first sight", {20, "node", "node\0a.js"_qba}, u"node a.js"_qs, 0},
        {"same comm keeps the cached text", {20, "node", "node\0b.js"_qba}, u"node a.js"_qs, 0},
        {"exec changed comm", {20, "codex", "codex\0exec"_qba}, u"codex exec"_qs, 0},
        {"a zombie forgets it", {20, "codex", "", 0, 1000, 'Z'}, u"[codex] <defunct>"_qs, 0},
        // Mid-exec the new comm shows before the arguments: that text is not kept.
        {"mid-exec", {21, "codex", ""}, u"[codex]"_qs, 0},
        {"arguments arrived", {21, "codex", "codex\0exec"_qba}, u"codex exec"_qs, 0},
        {"kernel thread", {22, "kworker", "", 0, 1000, 'I', 2, kt}, u"[kworker]"_qs, 0},
        // A kernel thread's empty command line is final.
        {"not read again", {22, "kworker", "x", 0, 1000, 'I', 2, kt}, u"[kworker]"_qs, 0},
        {"CPU at first sight", {30, "busy", "busy", 10}, u"busy"_qs, 0},
        {"1 s of CPU in 2 s", {30, "busy", "busy", 11}, u"busy"_qs, 50},
        // A reused PID starts afresh and its command line is read again.
        {"reused PID", {30, "busy", "reborn", 11, 5000}, u"reborn"_qs, 0},
        {"gone", {30}, u"<none>"_qs, -1},
        // A process missed by one snapshot is not compared.
        {"back after a miss", {30, "busy", "reborn", 20, 5000}, u"reborn"_qs, 0},
    };
    for (const auto& step : steps) {
        put(step.process);
        snapshotAfter(2s);
        EXPECT_EQ(command(step.process.pid), step.command) << step.name;
        EXPECT_DOUBLE_EQ(percent(step.process.pid), step.percent) << step.name;
    }
}

TEST_F(ProcSourceTest, DetailsOfCodexProcessesAndTheirChildrenOnly) {
    m_proc.write(m_proc.path(u"stat"_qs), "cpu 1 2 3\nbtime 1700000000\n");
    ProcProcessTableSource source{m_proc.path(), [this] { return m_now; }};
    put({40, "codex-x86_64-un", "codex\0exec\0x"_qba, 0, 250});
    put({41, "bash", "/bin/bash\0-c\0make"_qba, 0, 300, 'S', 40});
    put({42, "vim", "vim\0/home/u/.codex/config.toml"_qba});
    put({43, "codex", "", 0, 400, 'Z', 1});
    for (const qint64 pid : {40, 41, 42, 43}) {
        m_proc.link(QStringLiteral("/opt/bin/x%1").arg(pid), m_proc.path(pid, "exe"));
        m_proc.link(QStringLiteral("/home/u/p%1").arg(pid), m_proc.path(pid, "cwd"));
    }
    auto rows = test::byPID(source.snapshot());

    EXPECT_EQ(rows[40].executable, QStringLiteral("/opt/bin/x40"));
    EXPECT_EQ(rows[40].cwd, QStringLiteral("/home/u/p40"));
    EXPECT_EQ(rows[40].startedAt, QDateTime::fromMSecsSinceEpoch(
                                      1700000000000 + 250 * 1000 / qint64(m_ticks), Qt::UTC));
    EXPECT_EQ(rows[41].cwd, QStringLiteral("/home/u/p41")) << "child of a Codex process";
    EXPECT_TRUE(rows[42].executable.isEmpty() && rows[42].cwd.isEmpty()) << "arguments never count";
    EXPECT_EQ(rows[43].command, QStringLiteral("[codex] <defunct>"));
    EXPECT_TRUE(rows[43].executable.isEmpty()) << "a zombie keeps nothing";
}

TEST_F(ProcSourceTest, OthersAreReadInTurnKernelThreadsNeverAgain) {
    put({60, "codex", "codex"_qba, 1});
    put({61, "bash", "bash"_qba, 1});
    put({62, "kworker/0:0", "", 0, 1000, 'I', 2, ProcStat::kKernelThreadFlag});
    snapshotAfter(0ms, QSet<qint64>{60});
    put({60, "codex", "codex"_qba, 2});
    put({61, "codex", "codex exec x"_qba, 2}); // execs into Codex
    m_proc.write(m_proc.path(62, "cmdline"), "never read again");
    int snapshots = 0;
    while (command(61) != u"codex exec x" && snapshots < 10) {
        snapshotAfter(2s, QSet<qint64>{60});
        ++snapshots;
        EXPECT_EQ(percent(60), snapshots == 1 ? 50.0 : 0.0) << "the one of interest, every time";
    }
    EXPECT_LE(snapshots, ProcProcessTableSource::kRotationSlices) << "seen within 10 s";
    EXPECT_DOUBLE_EQ(percent(61), 100.0 / (2.0 * snapshots)) << "over the time since it was read";
    for (int i = 0; i < 2 * ProcProcessTableSource::kRotationSlices; ++i)
        snapshotAfter(2s, QSet<qint64>{60});
    EXPECT_EQ(command(62), QStringLiteral("[kworker/0:0]"));
}

TEST(ProcSource, MissingRootIsAnError) {
    ProcProcessTableSource source(QStringLiteral("/nonexistent/brenvik-proc"));
    EXPECT_EQ(test::commandsOf([&] { return source.snapshot(); }),
              QStringLiteral("Brenvik.ProcessMonitor 2: Cannot read /nonexistent/brenvik-proc: No "
                             "such file or directory"));
}

} // namespace
} // namespace brenvik
