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
        pids << QString::number(match.pid) + u' ' + rawValue(match.status);
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

// A refresh's notices: each change as "will change", then the property's
// own notice; matches and lastError only where the refresh was not cancelled.
QStringList noticesFor(const char* matches, const QString& lastError, const char* lastUpdated) {
    QStringList changes{u"isRefreshing: false -> true"_qs};
    if (*matches)
        changes << u"matches: "_qs + QString::fromUtf8(matches) << u"lastError: "_qs + lastError;
    changes << u"isRefreshing: true -> false"_qs
            << u"lastUpdated: "_qs + QString::fromUtf8(lastUpdated);
    QStringList notices;
    for (const QString& change : changes)
        notices << u"will change"_qs << change;
    return notices;
}

// Refreshes one after another on one monitor: when, what the scan does,
// the notices, and whether the wait for the scan is cancelled.
TEST(PublishedState, NoticesInOrderBeforeEachValueIsStoredAndFailuresAsText) {
    using Samples = QList<DetectedProcessSample>;
    const auto returns = [](Samples samples) -> ScriptedScan::Behaviour {
        return [samples] { return samples; };
    };
    const QString unknown = u"\"Unknown error while reading the process table\""_qs;
    const struct {
        qint64 atMs;
        ScriptedScan::Behaviour scan;
        QStringList notices;
        bool cancelled = false;
    } refreshes[] = {
        {1000, returns({sample(7, 5.0, 1.0)}),
         noticesFor("[] -> [7 running]", u"none -> none"_qs, "none -> 1000")},
        // Whatever the scan throws becomes the error text (a snapshot error's
        // message is the loop test's); a failure forgets the history.
        {3000, []() -> Samples { throw std::runtime_error("cannot read /proc"); },
         noticesFor("[7 running] -> []", u"none -> \"cannot read /proc\""_qs, "1000 -> 3000")},
        {5000, []() -> Samples { throw 42; },
         noticesFor("[] -> []", u"\"cannot read /proc\" -> "_qs + unknown, "3000 -> 5000")},
        // Within the grace period and with grown CPU time, but judged as new.
        {7000, returns({sample(7, 0.0, 20.0)}),
         noticesFor("[] -> [7 idle]", unknown + u" -> none", "5000 -> 7000")},
        // A cancelled wait touches only the flag and the time.
        {9000, returns({}), noticesFor("", {}, "7000 -> 9000"), true},
    };
    ScriptedMonitor scripted;
    CodexProcessMonitor& monitor = scripted.monitor;
    for (const auto& refresh : refreshes) {
        SCOPED_TRACE(::testing::Message() << "refresh at " << refresh.atMs << " ms");
        const auto matchesBefore = monitor.matches();
        const auto errorBefore = monitor.lastError();
        const auto historyPIDsBefore = monitor.historyByPID().keys();
        NoticeRecorder recorder(monitor);
        scripted.clock.set(refresh.atMs);
        scripted.scan.setBehaviour(refresh.scan);
        scripted.scan.hold();
        monitor.refresh();
        if (refresh.cancelled)
            monitor.cancelRefreshForTesting();
        scripted.scan.release();
        ASSERT_TRUE(waitForRefreshToEnd(monitor));
        EXPECT_EQ(recorder.notices, refresh.notices) << recorder.notices.join(u'\n').toStdString();
        EXPECT_EQ(monitor.historyByPID().size(), monitor.matches().size());
        if (refresh.cancelled) {
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
