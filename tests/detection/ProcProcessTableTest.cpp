#include "detection/ProcProcessTable.h"

#include "DetectionTestSupport.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <cerrno>
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
        {"pid not a number", "4x2 (bash) S 1" + tail, std::nullopt},
        {"empty", "", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseProcStat(c.contents), c.expected) << c.name;
}

// A /proc look-alike in a temporary folder, read by a source on a clock the test moves.
class ProcSourceTest : public ::testing::Test {
protected:
    void write(qint64 pid, const char* file, const QByteArray& contents) {
        QDir().mkpath(m_dir.filePath(QString::number(pid)));
        QFile out(m_dir.filePath(QStringLiteral("%1/%2").arg(pid).arg(QLatin1StringView(file))));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(contents);
    }
    void put(qint64 pid, const QByteArray& comm, const QByteArray& cmdline, quint64 cpuSeconds = 0,
             quint64 startTicks = 1000, char state = 'S', qint64 ppid = 1, quint64 flags = 0) {
        write(pid, "stat",
              QByteArray::number(pid) + " (" + comm + ") " + state + ' ' +
                  QByteArray::number(ppid) + " 0 0 0 -1 " + QByteArray::number(flags) +
                  " 0 0 0 0 " + QByteArray::number(cpuSeconds * m_ticks) + " 0 0 0 20 0 1 0 " +
                  QByteArray::number(startTicks) + " 0 0\n");
        write(pid, "cmdline", cmdline);
    }
    // Every process of the fake table matters to some session, unless the
    // test says which do.
    void snapshotAfter(std::chrono::milliseconds elapsed,
                       std::optional<QSet<qint64>> ofInterest = std::nullopt) {
        m_now += elapsed;
        if (!ofInterest) {
            ofInterest.emplace();
            for (const QString& name : QDir(m_dir.path()).entryList(QDir::Dirs))
                ofInterest->insert(name.toLongLong());
        }
        m_source.setProcessesOfInterest(*ofInterest);
        m_rows.clear();
        for (const auto& row : m_source.snapshot())
            m_rows.insert(row.pid, row);
    }
    QString command(qint64 pid) {
        return m_rows.contains(pid) ? m_rows[pid].command : u"<none>"_qs;
    }
    double percent(qint64 pid) { return m_rows.contains(pid) ? m_rows[pid].cpuPercent : -1; }

    const quint64 m_ticks = quint64(::sysconf(_SC_CLK_TCK));
    QTemporaryDir m_dir{test::scratchTemplate("fake-proc")};
    std::chrono::steady_clock::time_point m_now{};
    ProcProcessTableSource m_source{m_dir.path(), [this] { return m_now; }};
    QHash<qint64, ObservedProcess> m_rows;
};

TEST_F(ProcSourceTest, RowsFromStatAndCmdline) {
    QDir(m_dir.path()).mkpath(QStringLiteral("self"));
    put(10, "we(ird) )name", "node\0/x/codex\0--fast\0\0"_qba, 3, 1000, 'R', 3);
    put(11, "kworker/0:1", "", 0, 1000, 'S', 2);
    put(12, "bad", "a\xff\0b \0\tc\nd\x01\x7f"_qba);
    put(15, "", "nameless", 0, 0);
    write(13, "stat", "garbage");
    write(14, "status", "no stat file: vanished");
    snapshotAfter(0ms);

    ASSERT_EQ(m_rows.size(), 4);
    EXPECT_EQ(m_rows.value(10),
              (ObservedProcess{.pid = 10,
                               .ppid = 3,
                               .state = QStringLiteral("R"),
                               .cpuPercent = 0.0,
                               .cpuTime = 3.0,
                               .command = QStringLiteral("node /x/codex --fast"),
                               .loweredCommand = QStringLiteral("node /x/codex --fast"),
                               .arguments = {u"node"_qs, u"/x/codex"_qs, u"--fast"_qs},
                               .executable = {},
                               .cwd = {},
                               .startedAt = {}}));
    EXPECT_EQ(command(11), QStringLiteral("[kworker/0:1]"));
    EXPECT_EQ(command(12), QStringLiteral("a\uFFFD b  ?c d??")) << "controls as ps shows them";
    EXPECT_EQ(command(15), QStringLiteral("nameless"));
}

TEST_F(ProcSourceTest, CommandLineReReadOnlyWhenCommChanges) {
    put(20, "node", "node\0a.js"_qba);
    snapshotAfter(0ms);
    put(20, "node", "node\0b.js"_qba);
    snapshotAfter(2s);
    EXPECT_EQ(command(20), QStringLiteral("node a.js")) << "same comm keeps the cached text";
    put(20, "codex", "codex\0exec"_qba);
    snapshotAfter(2s);
    EXPECT_EQ(command(20), QStringLiteral("codex exec")) << "exec changed comm";
    put(20, "codex", "", 0, 1000, 'Z');
    snapshotAfter(2s);
    EXPECT_EQ(command(20), QStringLiteral("[codex] <defunct>")) << "a zombie forgets its command";

    // Mid-exec the new comm shows before the arguments: that text is not kept.
    put(21, "codex", "");
    snapshotAfter(2s);
    EXPECT_EQ(command(21), QStringLiteral("[codex]"));
    put(21, "codex", "codex\0exec"_qba);
    snapshotAfter(2s);
    EXPECT_EQ(command(21), QStringLiteral("codex exec")) << "arguments arrived";

    // A kernel thread's empty command line is final.
    put(22, "kworker/1:0", "", 0, 1000, 'I', 2, ProcStat::kKernelThreadFlag);
    snapshotAfter(2s);
    write(22, "cmdline", "not read again");
    snapshotAfter(2s);
    EXPECT_EQ(command(22), QStringLiteral("[kworker/1:0]"));
}

TEST_F(ProcSourceTest, DetailsOfCodexProcessesAndTheirChildrenOnly) {
    const auto link = [this](qint64 pid, const char* name, const QString& target) {
        QFile::link(target,
                    m_dir.filePath(QStringLiteral("%1/%2").arg(pid).arg(QLatin1StringView(name))));
    };
    QFile stat(m_dir.filePath(QStringLiteral("stat")));
    ASSERT_TRUE(stat.open(QIODevice::WriteOnly));
    stat.write("cpu 1 2 3\nbtime 1700000000\n");
    stat.close();
    ProcProcessTableSource source{m_dir.path(), [this] { return m_now; }};
    put(40, "codex-x86_64-un", "codex\0exec\0x"_qba, 0, 250);
    put(41, "bash", "/bin/bash\0-c\0make"_qba, 0, 300, 'S', 40);
    put(42, "vim", "vim\0/home/u/.codex/config.toml"_qba);
    put(43, "codex", "", 0, 400, 'Z', 1);
    for (const qint64 pid : {40, 41, 42, 43}) {
        link(pid, "exe", QStringLiteral("/opt/bin/x%1").arg(pid));
        link(pid, "cwd", QStringLiteral("/home/u/p%1").arg(pid));
    }
    QHash<qint64, ObservedProcess> rows;
    for (const auto& row : source.snapshot())
        rows.insert(row.pid, row);

    EXPECT_EQ(rows[40].executable, QStringLiteral("/opt/bin/x40"));
    EXPECT_EQ(rows[40].cwd, QStringLiteral("/home/u/p40"));
    EXPECT_EQ(rows[40].startedAt, QDateTime::fromMSecsSinceEpoch(
                                      1700000000000 + 250 * 1000 / qint64(m_ticks), Qt::UTC));
    EXPECT_EQ(rows[41].cwd, QStringLiteral("/home/u/p41")) << "child of a Codex process";
    EXPECT_TRUE(rows[42].executable.isEmpty() && rows[42].cwd.isEmpty()) << "arguments never count";
    EXPECT_EQ(rows[43].command, QStringLiteral("[codex] <defunct>"));
    EXPECT_TRUE(rows[43].executable.isEmpty()) << "a zombie keeps nothing";
}

TEST_F(ProcSourceTest, CPUPercentOverTheInterval) {
    put(30, "busy", "busy", 10);
    snapshotAfter(0ms);
    EXPECT_EQ(percent(30), 0.0) << "first sight";
    put(30, "busy", "busy", 11);
    snapshotAfter(2s);
    EXPECT_DOUBLE_EQ(percent(30), 50.0) << "1 s of CPU in 2 s";
    put(30, "busy", "reborn", 11, 5000);
    snapshotAfter(2s);
    EXPECT_EQ(percent(30), 0.0) << "reused PID starts afresh";
    EXPECT_EQ(command(30), QStringLiteral("reborn")) << "reused PID re-reads its command";
    QDir(m_dir.filePath(QStringLiteral("30"))).removeRecursively();
    snapshotAfter(2s);
    EXPECT_FALSE(m_rows.contains(30)) << "gone";
    put(30, "busy", "reborn", 20, 5000);
    snapshotAfter(2s);
    EXPECT_EQ(percent(30), 0.0) << "a process missed by one snapshot is not compared";
}

TEST_F(ProcSourceTest, OthersAreReadInTurnKernelThreadsNeverAgain) {
    put(60, "codex", "codex"_qba, 1);
    put(61, "bash", "bash"_qba, 1);
    put(62, "kworker/0:0", "", 0, 1000, 'I', 2, ProcStat::kKernelThreadFlag);
    snapshotAfter(0ms, QSet<qint64>{60});
    put(60, "codex", "codex"_qba, 2);
    put(61, "codex", "codex exec x"_qba, 2); // execs into Codex
    write(62, "cmdline", "never read again");
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
    try {
        (void)source.snapshot();
        ADD_FAILURE() << "no error";
    } catch (const ProcessSnapshotError& error) {
        EXPECT_EQ(error.domain(), kProcessMonitorErrorDomain);
        EXPECT_EQ(error.code(), ENOENT);
        EXPECT_STREQ(error.what(),
                     "Cannot read /nonexistent/brenvik-proc: No such file or directory");
    }
}

} // namespace
} // namespace brenvik
