#pragma once

#include "../detection/DetectionTestSupport.h"
#include "monitor/ProcessMonitoring.h"

#include <QDateTime>
#include <QTest>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stdexcept>

namespace brenvik::test {

// A fixed point in time, and offsets from it in milliseconds.
inline QDateTime at(qint64 ms) {
    static const QDateTime base = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000, Qt::UTC);
    return base.addMSecs(ms);
}

inline DetectedProcessSample sample(qint64 pid, double cpuPercent, double cpuTime, bool hot = false,
                                    QString command = QStringLiteral("codex"),
                                    qint64 memberCount = 1) {
    return session(pid, std::move(command), cpuPercent, cpuTime, hot, memberCount, memberCount);
}

// A wall clock the test sets by hand; read on the GUI thread only.
struct ManualClock {
    QDateTime now = at(0);

    void set(qint64 ms) { now = at(ms); }
    [[nodiscard]] CodexProcessMonitor::WallClock function() {
        return [this] { return now; };
    }
};

// A scan whose result the test scripts, that counts its calls and that can be
// held until the test releases it. Called on the worker thread. Declare it
// before the monitor: the monitor waits for its scan when destroyed.
class ScriptedScan {
public:
    using Behaviour = std::function<QList<DetectedProcessSample>()>;

    void returns(QList<DetectedProcessSample> samples) {
        setBehaviour([samples] { return samples; });
    }
    void fails(QString message) {
        setBehaviour([message]() -> QList<DetectedProcessSample> {
            throw ProcessSnapshotError(kProcessMonitorErrorDomain, 1, message);
        });
    }
    void setBehaviour(Behaviour behaviour) {
        locked([&] { m_behaviour = std::move(behaviour); });
    }
    void hold() {
        locked([this] { m_held = true; });
    }
    void release() {
        locked([this] { m_held = false; });
        m_changed.notify_all();
    }
    [[nodiscard]] int started() const {
        return locked([this] { return m_started; });
    }

    [[nodiscard]] CodexProcessMonitor::ScanFunction function() {
        return [this] {
            std::unique_lock lock(m_mutex);
            ++m_started;
            m_changed.wait(lock, [this] { return !m_held; });
            const Behaviour behaviour = m_behaviour;
            lock.unlock();
            return behaviour();
        };
    }

private:
    template <typename F> std::invoke_result_t<F> locked(F f) const {
        std::lock_guard lock(m_mutex);
        return f();
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    Behaviour m_behaviour = [] { return QList<DetectedProcessSample>(); };
    bool m_held = false;
    int m_started = 0;
};

// Waits for the refresh in flight to end, with a generous bound.
[[nodiscard]] inline bool waitForRefreshToEnd(const CodexProcessMonitor& monitor) {
    return QTest::qWaitFor([&] { return !monitor.isRefreshing(); }, 20000);
}

// Scans once with the given result at the given time and waits for the end.
[[nodiscard]] inline bool refreshAt(CodexProcessMonitor& monitor, ManualClock& clock, qint64 ms) {
    clock.set(ms);
    monitor.refresh();
    return waitForRefreshToEnd(monitor);
}

// A monitor on a scripted scan, a hand-set clock and scripted session logs,
// one per sample (none: judged by CPU); the scan first, since the monitor
// waits for its scan when destroyed.
struct ScriptedMonitor {
    ScriptedScan scan;
    ManualClock clock;
    std::mutex logsMutex; // the logs are read on the scan's thread
    QList<CodexProcessMonitor::LogState> logs;
    CodexProcessMonitor monitor{scan.function(), clock.function(), nullptr,
                                [this](const QList<DetectedProcessSample>&) {
                                    std::lock_guard lock(logsMutex);
                                    return logs;
                                }};

    // One refresh at `ms` with these samples and logs; true once it has ended.
    [[nodiscard]] bool refreshWith(QList<DetectedProcessSample> samples,
                                   QList<CodexProcessMonitor::LogState> sessionLogs = {},
                                   qint64 ms = 0) {
        scan.returns(std::move(samples));
        {
            std::lock_guard lock(logsMutex);
            logs = std::move(sessionLogs);
        }
        return refreshAt(monitor, clock, ms);
    }
    [[nodiscard]] bool failWith(QString message, qint64 ms = 0) {
        scan.fails(std::move(message));
        return refreshAt(monitor, clock, ms);
    }
};

} // namespace brenvik::test
