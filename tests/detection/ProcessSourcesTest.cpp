// The snapshot sources, /proc and ps, and their parsers.
#include "DetectionTestSupport.h"
#include "detection/ProcProcessTable.h"
#include "detection/PsProcessTable.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <cerrno>
#include <gtest/gtest.h>
#include <limits>
#include <unistd.h>

namespace brenvik {
namespace {

using namespace std::chrono_literals;
using test::row;

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
    put({10, "we(ird) )name", "node\0/x/codex\0--fast\0\0"_qba, 3, 1000, 'R', 3});
    put({12, "bad", "a\xff\0b \0\tc\nd\x01\x7f"_qba});
    put({15, "", "nameless", 0, 0});
    // Stat files that do not parse make no row: garbage, too short, a
    // two-letter state, a ppid that is no number, no closing parenthesis.
    const QByteArray tail = " 0 0 0 0 0 0 0 0 0 7 3 0 0 20 0 1 0 900 123 456\n";
    const QByteArray unparsable[] = {"garbage", "17 (bash) S 1 0 0 0 0 0 0 0 0 0 7 3\n",
                                     "18 (bash) Ss 1" + tail, "19 (bash) S x" + tail,
                                     "20 (bash S 1" + tail};
    qint64 pid = 16;
    for (const QByteArray& stat : unparsable) {
        m_proc.write(m_proc.path(pid, "stat"), stat);
        m_proc.write(m_proc.path(pid, "cmdline"), "x");
        ++pid;
    }
    m_proc.write(m_proc.path(14, "status"), "no stat file: vanished");
    snapshotAfter(0ms);

    ASSERT_EQ(m_rows.size(), 3);
    ObservedProcess expected = row(10, 3, u"node /x/codex --fast", 0, 3, u"R");
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

TEST(ProcessLineParsing, Cases) {
    const struct {
        const char* name;
        const char16_t* line;
        std::optional<ObservedProcess> expected;
    } cases[] = {
        {"columns and inner white space kept",
         u"  501   1 Ss     0.0   0:01.23 /usr/local/bin/codex  exec --help  ",
         row(501, 1, u"/usr/local/bin/codex  exec --help", 0.0, 1.23, u"Ss")},
        {"tabs and Unicode spaces separate, NBSP trimmed",
         u"7\t\u3000 3 R+\u20031.5 1:00 a\tb\u00a0", row(7, 3, u"a\tb", 1.5, 60, u"R+")},
        {"five columns and trailing blanks", u"501 1 Ss 0.0 0:01.23   ", std::nullopt},
        {"pid with a trailing letter", u"12a 1 S 0.0 0:00.00 x", std::nullopt},
        {"non-ASCII digits", u"\u0661\u0662 1 S 0.0 0:00.00 x", std::nullopt},
        {"pid beyond 64 bits", u"9223372036854775808 1 S 0.0 0:00.00 x", std::nullopt},
        {"ppid below 64 bits", u"1 -9223372036854775809 S 0.0 0:00.00 x", std::nullopt},
        {"signed extremes", u"+9223372036854775807 -9223372036854775808 S 0.0 0 x",
         row(std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::min(), u"x")},
        {"cpu not a number counts 0", u"12 1 S n/a 0:00.00 x", row(12, 1, u"x")},
        {"cpu with exponent and sign", u"12 1 S +1e2 0:00.00 x", row(12, 1, u"x", 100)},
        {"cpu beyond double's range", u"12 1 S 1e400 -1e-400 x",
         row(12, 1, u"x", std::numeric_limits<double>::infinity(), 0)},
        {"state taken unchanged", u"12 1 ?<sl 0 0 x", row(12, 1, u"x", 0, 0, u"?<sl")},
        // The clock forms ps prints beside M:SS.ss and plain seconds.
        {"hours", u"12 1 S 0 1:02:03 x", row(12, 1, u"x", 0, 3723)},
        {"days", u"12 1 S 0 1-02:03:04 x", row(12, 1, u"x", 0, 93784)},
        {"days and minutes", u"12 1 S 0 3-00:00 x", row(12, 1, u"x", 0, 259200)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseProcessLine(QString::fromUtf16(c.line)), c.expected) << c.name;
}

TEST(PsProcessTable, ExitStatusOutputAndLaunchFailures) {
    // Shell scripts standing in for ps, in a private folder.
    const test::ScratchDir dir("fake-ps");
    const auto script = [&](const char* name, const QByteArray& body) {
        const QString file =
            dir.write(dir.path(QLatin1StringView(name)), "#!/bin/sh\n" + body + '\n');
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file;
    };
    const struct {
        const char* name;
        QString executable;
        QString expected;
    } cases[] = {
        {"illegal option", script("a", "echo 'ps: illegal option' >&2; exit 1"),
         QStringLiteral("Brenvik.ProcessMonitor 1: ps: illegal option")},
        {"silent failure", script("b", "exit 2"),
         QStringLiteral("Brenvik.ProcessMonitor 2: ps failed with exit code 2")},
        {"killed by a signal", script("c", "kill -9 $$"),
         QStringLiteral("Brenvik.ProcessMonitor 137: ps failed with exit code 137")},
        {"only white space", script("d", "printf '  \\n\\t\\n'"), QString()},
        {"stderr dropped", script("e", "echo 'ps: x' >&2; echo '5 1 S 0.0 0:00 /bin/codex'"),
         QStringLiteral("/bin/codex")},
        {"invalid UTF-8 replaced", script("f", "printf '1 0 S 0.0 0:01 a\\377b\\n'"),
         QStringLiteral("a\uFFFDb")},
        {"large output read before the wait",
         script("g", "i=0; while [ $i -lt 1000 ]; do echo \"$i 1 S 0.0 0:00 $(printf %0100d 0)\"; "
                     "i=$((i+1)); done"),
         QStringList(1000, QStringLiteral("0").repeated(100)).join(u'\n')},
        {"cannot launch: missing", dir.path(u"missing"_qs),
         u"POSIX " + QString::number(ENOENT) + u": " + qt_error_string(ENOENT)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(test::commandsOf([&] { return readProcessTable(c.executable); }), c.expected)
            << c.name;
}

// Arbitrary bytes and mutated real lines through every parser.
TEST(ParserRobustness, ArbitraryInputNeverBreaksTheParsers) {
    const QByteArray seeds[] = {
        "  501   1 Ss     0.0   0:01.23 /usr/local/bin/codex  exec --help  ",
        "9223372036854775807 -1 R+ 1e308 1-23:59:59.99 node \xe2\x80\x83x",
        "42 (a) (b c)) R 9 0 0 0 0 0 0 0 0 0 7 3 0 0 20 0 1 0 900 123 456\n",
        "0x1p3 -0 inf nan 3-:::4 -",
    };
    test::fuzz(seeds, " -:.()0\t", 60000, [](const QByteArray& input, int) {
        const QString text = QString::fromUtf8(input);
        if (const auto row = parseProcessLine(text)) {
            ASSERT_FALSE(row->command.isEmpty()) << input.toHex().constData();
            ASSERT_FALSE(row->command.front().isSpace() || row->command.back().isSpace())
                << input.toHex().constData();
        }
        (void)parseCPUTime(text);
        if (const auto stat = parseProcStat(input)) {
            ASSERT_LE(stat->comm.size(), input.size()) << input.toHex().constData();
        }
    });
}

} // namespace
} // namespace brenvik
