// The refresh loop and the published state: the order of the notices, one
// scan at a time, failures that keep the loop going.
#include "MonitorTestSupport.h"

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <thread>

namespace brenvik::test {
namespace {

QString describe(const QList<ProcessMatch>& matches) {
    QStringList pids;
    for (const ProcessMatch& match : matches)
        pids << QString::number(match.pid);
    return u'[' + pids.join(u',') + u']';
}
QString describe(const std::optional<QString>& text) {
    return text ? u'"' + *text + u'"' : QStringLiteral("none");
}
QString describe(const std::optional<QDateTime>& time) {
    return time ? QString::number(at(0).msecsTo(*time)) : QStringLiteral("none");
}
QString describe(bool flag) {
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

// Writes down every notice as "property: value at emission -> new value".
class NoticeRecorder {
public:
    explicit NoticeRecorder(CodexProcessMonitor& monitor) {
        QObject::connect(&monitor, &CodexProcessMonitor::objectWillChange, &m_context,
                         [this] { notices << QStringLiteral("will change"); });
        record(monitor, u"matches", &CodexProcessMonitor::matchesChanged,
               &CodexProcessMonitor::matches);
        record(monitor, u"lastError", &CodexProcessMonitor::lastErrorChanged,
               &CodexProcessMonitor::lastError);
        record(monitor, u"isRefreshing", &CodexProcessMonitor::isRefreshingChanged,
               &CodexProcessMonitor::isRefreshing);
        record(monitor, u"lastUpdated", &CodexProcessMonitor::lastUpdatedChanged,
               &CodexProcessMonitor::lastUpdated);
    }

    QStringList notices;

private:
    template <typename Value, typename Getter>
    void record(const CodexProcessMonitor& monitor, QStringView name,
                void (CodexProcessMonitor::*changed)(Value), Getter getter) {
        QObject::connect(&monitor, changed, &m_context,
                         [this, &monitor, name = name.toString(), getter](Value next) {
                             notices << name + u": " + describe((monitor.*getter)()) + u" -> " +
                                            describe(next);
                         });
    }
    QObject m_context;
};

enum class Outcome { success, failure, cancellation };

// Every change comes as "will change", then the property's own notice.
QStringList noticesFor(std::initializer_list<const char*> changes) {
    QStringList notices;
    for (const char* change : changes)
        notices << QStringLiteral("will change") << QString::fromUtf8(change);
    return notices;
}

const struct {
    const char* name;
    std::optional<Outcome> before; // a refresh that ended at 1000 ms
    Outcome outcome;               // the recorded refresh, ending at 3000 ms
    QStringList expected;
} kOrderCases[] = {
    {"success after a failure", Outcome::failure, Outcome::success,
     noticesFor({"isRefreshing: false -> true", "matches: [] -> [7]", "lastError: \"boom\" -> none",
                 "isRefreshing: true -> false", "lastUpdated: 1000 -> 3000"})},
    {"first success also publishes the absent error", std::nullopt, Outcome::success,
     noticesFor({"isRefreshing: false -> true", "matches: [] -> [7]", "lastError: none -> none",
                 "isRefreshing: true -> false", "lastUpdated: none -> 3000"})},
    {"failure after a success", Outcome::success, Outcome::failure,
     noticesFor({"isRefreshing: false -> true", "matches: [7] -> []", "lastError: none -> \"boom\"",
                 "isRefreshing: true -> false", "lastUpdated: 1000 -> 3000"})},
    {"cancellation touches only the flag and the time", Outcome::success, Outcome::cancellation,
     noticesFor({"isRefreshing: false -> true", "isRefreshing: true -> false",
                 "lastUpdated: 1000 -> 3000"})},
};

void runRefresh(ScriptedMonitor& scripted, Outcome outcome, qint64 atMs) {
    ScriptedScan& scan = scripted.scan;
    CodexProcessMonitor& monitor = scripted.monitor;
    scripted.clock.set(atMs);
    if (outcome == Outcome::failure)
        scan.fails(QStringLiteral("boom"));
    else
        scan.returns({sample(7, 5.0, 1.0)});
    scan.hold();
    monitor.refresh();
    if (outcome == Outcome::cancellation)
        monitor.cancelRefreshForTesting();
    scan.release();
    ASSERT_TRUE(waitForRefreshToEnd(monitor));
}

TEST(PublishedState, NoticesComeInOrderBeforeEachValueIsStored) {
    for (const auto& testCase : kOrderCases) {
        SCOPED_TRACE(testCase.name);
        ScriptedMonitor scripted;
        CodexProcessMonitor& monitor = scripted.monitor;
        if (testCase.before)
            runRefresh(scripted, *testCase.before, 1000);
        const auto matchesBefore = monitor.matches();
        const auto errorBefore = monitor.lastError();
        const auto historyPIDsBefore = monitor.historyByPID().keys();

        NoticeRecorder recorder(monitor);
        runRefresh(scripted, testCase.outcome, 3000);
        EXPECT_EQ(recorder.notices, testCase.expected)
            << recorder.notices.join(u'\n').toStdString();

        if (testCase.outcome == Outcome::cancellation) {
            EXPECT_EQ(monitor.matches(), matchesBefore);
            EXPECT_EQ(monitor.lastError(), errorBefore);
            EXPECT_EQ(monitor.historyByPID().keys(), historyPIDsBefore);
        }
    }
}

class RefreshLoop : public ::testing::Test, protected ScriptedMonitor {
protected:
    QSignalSpy refreshes{&monitor, &CodexProcessMonitor::lastUpdatedChanged};
};

// One scan at a time: start() again, refresh() and loop wake-ups during a
// slow scan change nothing and queue nothing; the loop then goes on through
// failures.
TEST_F(RefreshLoop, OneScanAtATimeThenEveryIntervalThroughFailures) {
    scan.fails(QStringLiteral("ps failed with exit code 1"));
    scan.hold();
    monitor.start();
    EXPECT_TRUE(monitor.isRefreshing()) << "the first refresh starts at once";
    NoticeRecorder recorder(monitor);
    for (int wakeUp = 0; wakeUp < 3; ++wakeUp) {
        monitor.start();
        monitor.refresh();
        monitor.wakeUpForTesting();
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(monitor.isRefreshing());
    EXPECT_FALSE(monitor.lastUpdated());
    EXPECT_EQ(recorder.notices, QStringList()) << recorder.notices.join(u'\n').toStdString();
    scan.release();
    ASSERT_TRUE(waitForRefreshToEnd(monitor));
    QCoreApplication::processEvents();
    EXPECT_EQ(scan.started(), 1);
    EXPECT_EQ(refreshes.size(), 1);
    monitor.start(); // a running loop is not started again
    EXPECT_FALSE(monitor.isRefreshing());

    // The real timer this time, not the hook: a failing scan must not stop
    // the loop, and every failed refresh still moves lastUpdated on.
    clock.set(2000);
    ASSERT_TRUE(QTest::qWaitFor([&] { return refreshes.size() == 2; }, 20000));
    ASSERT_TRUE(waitForRefreshToEnd(monitor));
    EXPECT_EQ(scan.started(), 2);
    EXPECT_TRUE(monitor.historyByPID().isEmpty());
    EXPECT_EQ(monitor.lastError(), QStringLiteral("ps failed with exit code 1"));
    EXPECT_EQ(monitor.lastUpdated(), at(2000));
}

// Whatever the scan throws becomes the error text (a snapshot error's message
// is the loop test's); the failure clears the history, and the next success
// clears the error.
TEST(ScanFailure, BecomesTheErrorTextThenSuccessClearsIt) {
    using Samples = QList<DetectedProcessSample>;
    const struct {
        const char* name;
        ScriptedScan::Behaviour behaviour;
        QString expected;
    } cases[] = {
        {"standard exception: its what()",
         []() -> Samples { throw std::runtime_error("cannot read /proc"); },
         QStringLiteral("cannot read /proc")},
        {"anything else: a fixed text", []() -> Samples { throw 42; },
         QStringLiteral("Unknown error while reading the process table")},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        ScriptedMonitor scripted;
        const CodexProcessMonitor& monitor = scripted.monitor;
        ASSERT_TRUE(scripted.refreshWith({sample(5, 50.0, 10.0)}));
        ASSERT_EQ(monitor.matches().value(0).status, ProcessActivityStatus::running);

        scripted.scan.setBehaviour(testCase.behaviour);
        ASSERT_TRUE(refreshAt(scripted.monitor, scripted.clock, 2000));
        EXPECT_EQ(monitor.lastError(), testCase.expected);
        EXPECT_TRUE(monitor.matches().isEmpty());
        EXPECT_TRUE(monitor.historyByPID().isEmpty());

        // Within the grace period and with grown CPU time, but judged as new.
        ASSERT_TRUE(scripted.refreshWith({sample(5, 0.0, 20.0)}, {}, 4000));
        EXPECT_FALSE(monitor.lastError());
        ASSERT_EQ(monitor.matches().size(), 1);
        EXPECT_EQ(monitor.matches()[0].status, ProcessActivityStatus::idle);
    }
}

TEST(MonitorLifetime, DestroyingTheMonitorDuringAScanIsSafe) {
    // Whether the scan ends during the destruction or its result already
    // waits in the event queue, nothing may touch the dead monitor (the
    // sanitizers watch this).
    for (const bool heldUntilDestruction : {true, false}) {
        SCOPED_TRACE(heldUntilDestruction ? "scan released during destruction"
                                          : "result waiting in the queue");
        ScriptedScan scan;
        ManualClock clock;
        auto monitor = std::make_unique<CodexProcessMonitor>(scan.function(), clock.function());
        scan.returns({sample(1, 5.0, 1.0)});
        if (heldUntilDestruction)
            scan.hold();
        monitor->start();
        ASSERT_TRUE(QTest::qWaitFor([&] { return scan.started() == 1; }, 20000));
        // The destructor waits for a held scan, so release it from elsewhere.
        std::thread releaser([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            scan.release();
        });
        monitor.reset();
        releaser.join();
        QCoreApplication::processEvents();
        EXPECT_EQ(scan.started(), 1);
    }
}

} // namespace
} // namespace brenvik::test
