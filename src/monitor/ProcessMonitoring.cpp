#include "monitor/ProcessMonitoring.h"

#include "monitor/Published.h"

#include <QtConcurrentRun>
#include <algorithm>
#include <exception>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace brenvik {

namespace {

// Both zeros compare equal, so they must hash alike.
[[nodiscard]] double canonicalZero(double value) noexcept {
    return value == 0.0 ? 0.0 : value;
}

// The scan is background work: let every interactive thread go first.
void lowerOwnThreadPriority() noexcept {
#ifdef Q_OS_LINUX
    // QThread::setPriority() has no effect under SCHED_OTHER; a thread's own
    // nice value does. Failing to lower it is harmless.
    (void)setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 10);
#endif
}

[[nodiscard]] QString countedProcesses(qint64 count, QStringView state) {
    return QString::number(count) + u" Codex process" +
           (count == 1 ? QStringView() : QStringView(u"es")) + u' ' + state;
}

[[nodiscard]] QString totalRunningIdle(const CodexRunState::Observed& observed) {
    return QString::number(observed.total) + u" total \u00B7 " + QString::number(observed.running) +
           u" running \u00B7 " + QString::number(observed.idle) + u" idle";
}

} // namespace

QString rawValue(ProcessActivityStatus status) {
    switch (status) {
    case ProcessActivityStatus::running:
        return QStringLiteral("running");
    case ProcessActivityStatus::idle:
        break;
    }
    return QStringLiteral("idle");
}

std::optional<ProcessActivityStatus> processActivityStatus(QStringView rawValue) {
    if (rawValue == u"running")
        return ProcessActivityStatus::running;
    if (rawValue == u"idle")
        return ProcessActivityStatus::idle;
    return std::nullopt;
}

size_t qHash(ProcessActivityStatus status, size_t seed) noexcept {
    return qHash(rawValue(status), seed);
}

size_t qHash(const ProcessMatch& match, size_t seed) noexcept {
    return qHashMulti(seed, match.pid, match.command, rawValue(match.status),
                      canonicalZero(match.instantaneousCPUPercent),
                      canonicalZero(match.cumulativeCPUTime), match.memberCount, match.processCount,
                      match.cwd, match.startedAt ? match.startedAt->toMSecsSinceEpoch() : -1);
}

CodexRunState CodexRunState::observed(qint64 total, qint64 running, qint64 idle) {
    return CodexRunState(Observed{total, running, idle});
}

CodexRunState CodexRunState::error(QString message) {
    return CodexRunState(Error{std::move(message)});
}

CodexRunState CodexRunState::idle() {
    return CodexRunState(Idle{});
}

QString detailText(const CodexRunState& state) {
    return state.visit(
        [](const CodexRunState::Observed& observed) -> QString {
            if (observed.running == 0)
                return countedProcesses(observed.idle, u"idle");
            if (observed.idle == 0)
                return countedProcesses(observed.running, u"running");
            return totalRunningIdle(observed);
        },
        [](const CodexRunState::Error& error) -> QString {
            return QStringLiteral("Codex process detection failed: ") + error.message;
        },
        [](const CodexRunState::Idle&) -> QString {
            return QStringLiteral("No Codex CLI process detected");
        });
}

CodexProcessMonitor::CodexProcessMonitor(QObject* parent)
    : CodexProcessMonitor([] { return scanCodexProcesses(); }, &QDateTime::currentDateTimeUtc,
                          parent) {}

CodexProcessMonitor::CodexProcessMonitor(ScanFunction scan, WallClock clock, QObject* parent)
    : QObject(parent)
    , m_scan(std::move(scan))
    , m_clock(std::move(clock)) {
    m_loop.setInterval(refreshInterval);
    connect(&m_loop, &QTimer::timeout, this, &CodexProcessMonitor::onLoopWakeUp);
    m_scanPool.setMaxThreadCount(1);
    connect(&m_scanWatcher, &QFutureWatcherBase::finished, this,
            &CodexProcessMonitor::onScanFinished);
}

CodexProcessMonitor::~CodexProcessMonitor() {
    m_loop.stop();
    // A scan in flight runs to its end, but nobody hears of it any more. Its
    // worker holds its own copy of the scan function, and the pool must be
    // idle before the monitor's members go.
    m_scanWatcher.disconnect(this);
    m_scanPool.waitForDone();
}

void CodexProcessMonitor::start() {
    if (m_loop.isActive())
        return;
    refresh();
    m_loop.start();
}

void CodexProcessMonitor::refresh() {
    if (m_refreshInFlight)
        return;
    // Marked before publishing so that a subscriber calling refresh() from
    // its slot cannot start a second scan.
    m_refreshInFlight = true;
    publish(this, m_isRefreshing, true, &CodexProcessMonitor::isRefreshingChanged);
    m_scanWatcher.setFuture(
        QtConcurrent::run(&m_scanPool, [scan = m_scan] { return runScan(scan); }));
}

void CodexProcessMonitor::onLoopWakeUp() {
    refresh();
}

void CodexProcessMonitor::cancelRefreshForTesting() {
    if (m_refreshInFlight)
        m_scanWatcher.cancel();
}

CodexProcessMonitor::ScanOutcome CodexProcessMonitor::runScan(const ScanFunction& scan) noexcept {
    lowerOwnThreadPriority();
    // Nothing may escape the worker: every failure becomes a text.
    try {
        return {scan(), std::nullopt};
    } catch (const ProcessSnapshotError& error) {
        return {{}, error.message()};
    } catch (const std::exception& error) {
        return {{}, QString::fromLocal8Bit(error.what())};
    } catch (...) {
        return {{}, QStringLiteral("Unknown error while reading the process table")};
    }
}

void CodexProcessMonitor::onScanFinished() {
    const QFuture<ScanOutcome> future = m_scanWatcher.future();
    // A cancelled wait leaves the published state as it was.
    if (!future.isCanceled() && future.resultCount() > 0) {
        const ScanOutcome outcome = future.result();
        if (outcome.error) {
            publish(this, m_matches, QList<ProcessMatch>(), &CodexProcessMonitor::matchesChanged);
            m_historyByPID.clear();
            publish(this, m_lastError, outcome.error, &CodexProcessMonitor::lastErrorChanged);
        } else {
            Classification classification = classify(outcome.samples, m_clock());
            publish(this, m_matches, std::move(classification.matches),
                    &CodexProcessMonitor::matchesChanged);
            m_historyByPID = std::move(classification.history);
            publish(this, m_lastError, std::optional<QString>(),
                    &CodexProcessMonitor::lastErrorChanged);
        }
    }
    finishRefresh();
}

void CodexProcessMonitor::finishRefresh() {
    publish(this, m_isRefreshing, false, &CodexProcessMonitor::isRefreshingChanged);
    m_refreshInFlight = false;
    publish(this, m_lastUpdated, std::optional<QDateTime>(m_clock()),
            &CodexProcessMonitor::lastUpdatedChanged);
}

CodexProcessMonitor::Classification
CodexProcessMonitor::classify(const QList<DetectedProcessSample>& samples,
                              const QDateTime& now) const {
    Classification result;
    result.matches.reserve(samples.size());
    result.history.reserve(samples.size());
    for (const DetectedProcessSample& sample : samples) {
        const auto previous = m_historyByPID.constFind(sample.pid);
        const bool seenBefore = previous != m_historyByPID.constEnd();

        // CPU use over the interval counts once it is more than one tick, so
        // an idle TUI's rare wake-up never reads as work.
        const double seconds =
            seenBefore ? static_cast<double>(previous->seenAt.msecsTo(now)) / 1000.0 : 0.0;
        const double interval =
            seconds > 0 ? seconds : std::chrono::duration<double>(refreshInterval).count();
        const bool aboveTick = sample.totalCPUPercent / 100.0 * interval > 1.5 * cpuTickNoise;
        // The sum first, then the comparison: the boundary itself is not busy.
        const bool busyNow = sample.hasHotState ||
                             (sample.totalCPUPercent >= cpuActivityThreshold && aboveTick) ||
                             (seenBefore && previous->cumulativeCPUTime + cpuAdvanceThreshold <
                                                sample.cumulativeCPUTime);

        std::optional<QDateTime> lastBusyAt;
        if (busyNow)
            lastBusyAt = now;
        else if (seenBefore)
            lastBusyAt = previous->lastBusyAt;

        // A lastBusyAt ahead of now (the clock was set back) is within grace.
        const bool withinGrace =
            lastBusyAt && static_cast<double>(lastBusyAt->msecsTo(now)) / 1000.0 <= busyGracePeriod;
        const ProcessActivityStatus status =
            busyNow || withinGrace ? ProcessActivityStatus::running : ProcessActivityStatus::idle;

        result.matches.append(ProcessMatch{.pid = sample.pid,
                                           .command = sample.command,
                                           .status = status,
                                           .instantaneousCPUPercent = sample.totalCPUPercent,
                                           .cumulativeCPUTime = sample.cumulativeCPUTime,
                                           .memberCount = sample.memberCount,
                                           .processCount = sample.processCount,
                                           .cwd = sample.cwd,
                                           .startedAt = sample.startedAt});
        result.history.insert(sample.pid,
                              ActivityHistory{sample.cumulativeCPUTime, lastBusyAt, now});
    }
    return result;
}

CodexRunState CodexProcessMonitor::runState() const {
    if (m_lastError)
        return CodexRunState::error(*m_lastError);
    if (m_matches.isEmpty())
        return CodexRunState::idle();
    const auto running = static_cast<qint64>(
        std::count_if(m_matches.cbegin(), m_matches.cend(), [](const ProcessMatch& match) {
            return match.status == ProcessActivityStatus::running;
        }));
    const auto total = static_cast<qint64>(m_matches.size());
    return CodexRunState::observed(total, running, total - running);
}

QString CodexProcessMonitor::summary() const {
    if (!m_lastUpdated && !m_lastError && m_matches.isEmpty())
        return QStringLiteral("Checking for Codex CLI processes\u2026");
    return runState().visit(
        [](const CodexRunState::Observed& observed) -> QString {
            if (observed.running == 0)
                return QString::number(observed.idle) + u" idle";
            if (observed.idle == 0)
                return QString::number(observed.running) + u" running";
            return totalRunningIdle(observed);
        },
        [](const CodexRunState::Error&) -> QString {
            return QStringLiteral("Process detection failed");
        },
        [](const CodexRunState::Idle&) -> QString {
            return QStringLiteral("No Codex CLI process detected");
        });
}

} // namespace brenvik
