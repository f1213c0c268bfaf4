#include "DetectionTestSupport.h"
#include "detection/ProcProcessTable.h"
#include "detection/PsProcessTable.h"

#include <QDir>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <gtest/gtest.h>
#include <iostream>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace brenvik {
namespace {

using namespace std::chrono_literals;
using test::byPID;

// A child process killed and reaped when the test leaves, also on failure.
struct Child {
    explicit Child(std::vector<const char*> argv) {
        argv.push_back(nullptr);
        if (::posix_spawnp(&pid, argv[0], nullptr, nullptr, const_cast<char* const*>(argv.data()),
                           environ) != 0)
            pid = -1;
    }
    ~Child() {
        if (pid > 0) {
            ::kill(pid, SIGKILL);
            ::waitpid(pid, nullptr, 0);
        }
    }
    pid_t pid = -1;
};

// A snapshot in which every process is read afresh, as those that make up
// sessions are: only such rows are held to ps.
QList<ObservedProcess> snapshotOfAll(ProcProcessTableSource& source) {
    QSet<qint64> all;
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool numeric = false;
        const qint64 pid = name.toLongLong(&numeric);
        if (numeric)
            all.insert(pid);
    }
    source.setProcessesOfInterest(all);
    return source.snapshot();
}

// Waits (bounded) until the child has exec'd, so both sources see the final command.
void waitForCommand(ProcProcessTableSource& source, qint64 pid, const QString& command) {
    const auto deadline = std::chrono::steady_clock::now() + 15s;
    while (std::chrono::steady_clock::now() < deadline) {
        const auto rows = byPID(snapshotOfAll(source));
        if (rows.value(pid).command == command)
            return;
        std::this_thread::sleep_for(10ms);
    }
    FAIL() << "child " << pid << " never showed " << command.toStdString();
}

TEST(LiveSources, ProcAgreesWithPsAndMeasuresIntervals) {
    const Child sleeper({"sleep", "600"});
    const Child burner({"sh", "-c", "while :; do :; done"});
    ASSERT_GT(sleeper.pid, 0);
    ASSERT_GT(burner.pid, 0);

    ProcProcessTableSource proc;
    waitForCommand(proc, sleeper.pid, QStringLiteral("sleep 600"));
    waitForCommand(proc, burner.pid, QStringLiteral("sh -c while :; do :; done"));

    // The burner's CPU as the kernel's own clock for it counts, to tell a busy
    // machine (where it may get less than half a core) from a wrong figure.
    clockid_t burnerClock{};
    ASSERT_EQ(::clock_getcpuclockid(pid_t(burner.pid), &burnerClock), 0);
    const auto burnerSeconds = [burnerClock] {
        timespec t{};
        ::clock_gettime(burnerClock, &t);
        return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
    };

    const double burnedBefore = burnerSeconds();
    const auto firstAt = std::chrono::steady_clock::now();
    const auto before = byPID(snapshotOfAll(proc));
    const auto ps = readProcessTable();
    std::this_thread::sleep_until(firstAt + 1s); // the measurement interval
    const double burnedAfter = burnerSeconds();
    const auto secondAt = std::chrono::steady_clock::now();
    const auto after = byPID(snapshotOfAll(proc));

    const double actual = 100 * (burnedAfter - burnedBefore) /
                          std::chrono::duration<double>(secondAt - firstAt).count();
    const double burnerPercent = after.value(burner.pid).cpuPercent;
    EXPECT_NEAR(burnerPercent, actual, 10);
    if (actual > 60) {
        EXPECT_GT(burnerPercent, 50);
    } else {
        std::cout << "busy machine: the burner got only " << actual << " % of a core\n";
    }
    EXPECT_LT(after.value(sleeper.pid).cpuPercent, 1);

    // States are read at slightly different moments, so only processes whose
    // state held across both /proc reads are held to ps, and this process is
    // left out: it runs while it reads /proc and sleeps while it waits for ps.
    const qint64 self = ::getpid();
    QSet<qint64> compared;
    QStringList stateMismatches;
    for (const auto& p : ps) {
        // Only processes that stayed the same across both /proc reads.
        if (!before.contains(p.pid) || !after.contains(p.pid))
            continue;
        const auto& b = before[p.pid];
        const auto& a = after[p.pid];
        if (b.command != a.command || b.ppid != a.ppid || b.state == u"Z" || p.state == u"Z")
            continue;
        // A kernel worker names itself after the work it does, which changes
        // at any moment; there is no command of its own to compare.
        if (b.command.startsWith(u"[kworker"))
            continue;
        compared.insert(p.pid);
        const std::string name = std::to_string(p.pid) + " " + p.command.toStdString();
        EXPECT_EQ(b.ppid, p.ppid) << name;
        EXPECT_EQ(b.command, p.command) << name;
        EXPECT_LT(std::abs(b.cpuTime - p.cpuTime), 1.0) << name;
        if (p.pid != self && b.state == a.state && b.state != p.state)
            stateMismatches
                << QStringLiteral("%1 %2/%3 %4").arg(p.pid).arg(b.state, p.state, p.command);
    }
    EXPECT_TRUE(compared.contains(sleeper.pid) && compared.contains(burner.pid) &&
                compared.contains(self));
    EXPECT_EQ(after.value(sleeper.pid).state, u"S");
    EXPECT_EQ(after.value(burner.pid).state, u"R");
    // A process of the machine may still change state in between.
    EXPECT_LE(stateMismatches.size(), std::max<qsizetype>(1, compared.size() / 10))
        << stateMismatches.join(u"; ").toStdString();
}

} // namespace
} // namespace brenvik
