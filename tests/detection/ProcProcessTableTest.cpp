#include "detection/ProcProcessTable.h"

#include "DetectionTestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <unistd.h>

namespace brenvik {
namespace {

using namespace std::chrono_literals;

struct StatCase {
    const char* name;
    QByteArray contents;
    std::optional<ProcStat> expected;
};

TEST(ProcStatParsing, Cases) {
    const QByteArray tail = " 0 0 0 0 0 0 0 0 0 7 3 0 0 20 0 1 0 900 123 456\n";
    const StatCase cases[] = {
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

// A /proc look-alike in a temporary folder.
class FakeProc {
public:
    struct Process {
        qint64 pid = 0;
        QByteArray comm = {};
        char state = 'S';
        qint64 ppid = 1;
        quint64 cpuTicks = 0;
        quint64 startTicks = 1000;
        QByteArray cmdline = {};
    };

    FakeProc() {
        QDir(root()).mkpath(QStringLiteral("self"));
        QDir(root()).mkpath(QStringLiteral("sys"));
    }
    [[nodiscard]] QString root() const { return m_dir.path(); }

    void put(const Process& p) {
        const QString dir = m_dir.filePath(QString::number(p.pid));
        QDir().mkpath(dir);
        writeFile(dir + QStringLiteral("/stat"),
                  QByteArray::number(p.pid) + " (" + p.comm + ") " + p.state + ' ' +
                      QByteArray::number(p.ppid) + " 0 0 0 -1 0 0 0 0 0 " +
                      QByteArray::number(p.cpuTicks) + " 0 0 0 20 0 1 0 " +
                      QByteArray::number(p.startTicks) + " 0 0\n");
        writeFile(dir + QStringLiteral("/cmdline"), p.cmdline);
    }
    void remove(qint64 pid) { QDir(m_dir.filePath(QString::number(pid))).removeRecursively(); }
    void putRaw(const char* entry, const char* file, const QByteArray& contents) {
        QDir().mkpath(m_dir.filePath(QString::fromLatin1(entry)));
        writeFile(m_dir.filePath(QString::fromLatin1(entry) + u'/' + QString::fromLatin1(file)),
                  contents);
    }

private:
    static void writeFile(const QString& path, const QByteArray& contents) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(contents);
    }
    QTemporaryDir m_dir{test::scratchTemplate("fake-proc")};
};

class ProcSourceTest : public ::testing::Test {
protected:
    std::optional<ObservedProcess> find(qint64 pid) {
        for (const auto& row : m_rows) {
            if (row.pid == pid)
                return row;
        }
        return std::nullopt;
    }
    void snapshotAfter(std::chrono::milliseconds elapsed) {
        m_now += elapsed;
        m_rows = m_source.snapshot();
    }
    QString command(qint64 pid) {
        return find(pid) ? find(pid)->command : QStringLiteral("<none>");
    }
    double percent(qint64 pid) { return find(pid) ? find(pid)->cpuPercent : -1; }

    const quint64 m_ticks = quint64(::sysconf(_SC_CLK_TCK));
    FakeProc m_proc;
    std::chrono::steady_clock::time_point m_now{};
    ProcProcessTableSource m_source{m_proc.root(), [this] { return m_now; }};
    QList<ObservedProcess> m_rows;
};

TEST_F(ProcSourceTest, RowsFromStatAndCmdline) {
    m_proc.put({.pid = 10,
                .comm = "we(ird) )name",
                .state = 'R',
                .ppid = 3,
                .cpuTicks = 3 * m_ticks,
                .cmdline = "node\0/x/codex\0--fast\0\0"_qba});
    m_proc.put({.pid = 11, .comm = "kworker/0:1", .ppid = 2});
    m_proc.put({.pid = 12, .comm = "bad", .cmdline = "a\xff\0b \0"_qba});
    m_proc.put({.pid = 15, .comm = "", .startTicks = 0, .cmdline = "nameless"});
    m_proc.putRaw("13", "stat", "garbage");
    m_proc.putRaw("14", "status", "no stat file: vanished");
    snapshotAfter(0ms);

    ASSERT_EQ(m_rows.size(), 4);
    EXPECT_EQ(find(10), (ObservedProcess{10, 3, QStringLiteral("R"), 0.0, 3.0,
                                         QStringLiteral("node /x/codex --fast")}));
    EXPECT_EQ(command(11), QStringLiteral("[kworker/0:1]"));
    EXPECT_EQ(command(12), QStringLiteral("a\uFFFD b"));
    EXPECT_EQ(command(15), QStringLiteral("nameless"));
}

TEST_F(ProcSourceTest, CommandLineReReadOnlyWhenCommChanges) {
    m_proc.put({.pid = 20, .comm = "node", .cmdline = "node\0a.js"_qba});
    snapshotAfter(0ms);
    m_proc.put({.pid = 20, .comm = "node", .cmdline = "node\0b.js"_qba});
    snapshotAfter(2s);
    EXPECT_EQ(command(20), QStringLiteral("node a.js")) << "same comm keeps the cached text";
    m_proc.put({.pid = 20, .comm = "codex", .cmdline = "codex\0exec"_qba});
    snapshotAfter(2s);
    EXPECT_EQ(command(20), QStringLiteral("codex exec")) << "exec changed comm";
}

TEST_F(ProcSourceTest, CPUPercentOverTheInterval) {
    m_proc.put({.pid = 30, .comm = "busy", .cpuTicks = 10 * m_ticks, .cmdline = "busy"});
    snapshotAfter(0ms);
    EXPECT_EQ(percent(30), 0.0) << "first sight";

    m_proc.put({.pid = 30, .comm = "busy", .cpuTicks = 11 * m_ticks, .cmdline = "busy"});
    snapshotAfter(2s);
    EXPECT_DOUBLE_EQ(percent(30), 50.0) << "1 s of CPU in 2 s";

    m_proc.put({.pid = 30,
                .comm = "busy",
                .cpuTicks = 11 * m_ticks,
                .startTicks = 5000,
                .cmdline = "reborn"});
    snapshotAfter(2s);
    EXPECT_EQ(percent(30), 0.0) << "reused PID starts afresh";
    EXPECT_EQ(command(30), QStringLiteral("reborn")) << "reused PID re-reads its command";

    m_proc.remove(30);
    snapshotAfter(2s);
    EXPECT_FALSE(find(30)) << "gone";
    m_proc.put({.pid = 30,
                .comm = "busy",
                .cpuTicks = 20 * m_ticks,
                .startTicks = 5000,
                .cmdline = "reborn"});
    snapshotAfter(2s);
    EXPECT_EQ(percent(30), 0.0) << "a process missed by one snapshot is not compared";
}

TEST(ProcSource, MissingRootIsAnError) {
    ProcProcessTableSource source(QStringLiteral("/nonexistent/brenvik-proc"));
    EXPECT_THROW((void)source.snapshot(), ProcessSnapshotError);
}

} // namespace
} // namespace brenvik
