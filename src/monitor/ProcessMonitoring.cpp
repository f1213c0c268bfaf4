#include "monitor/ProcessMonitoring.h"

#include "detection/FailureLog.h"
#include "monitor/MonitorLogging.h"
#include "monitor/Published.h"
#include "sessionlog/SessionLogLocator.h"

#include <QCoreApplication>
#include <QtConcurrentRun>
#include <algorithm>
#include <exception>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace brenvik {

namespace {

// The scan is background work: let every interactive thread go first.
void lowerOwnThreadPriority() noexcept {
#ifdef Q_OS_LINUX
    // QThread::setPriority() has no effect under SCHED_OTHER; a thread's own
    // nice value does. Failing to lower it is harmless.
    (void)setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 10);
#endif
}

struct RunStateText {
    Q_DECLARE_TR_FUNCTIONS(RunStateText)
};

enum class RunPart { running, waiting, idle };

// "2 running"; a number of its own per state, for languages whose words change with it.
[[nodiscard]] QString countedPart(qint64 count, RunPart part) {
    const int n = static_cast<int>(count);
    switch (part) {
    case RunPart::running:
        return RunStateText::tr("%n running", nullptr, n);
    case RunPart::waiting:
        return RunStateText::tr("%n waiting", nullptr, n);
    case RunPart::idle:
        break;
    }
    return RunStateText::tr("%n idle", nullptr, n);
}

// English, the source language, loads no translation: its singular is a text
// of its own, and the translations give every language its plural forms.
[[nodiscard]] QString countedProcesses(qint64 count, RunPart part) {
    const int n = static_cast<int>(count);
    switch (part) {
    case RunPart::running:
        return n == 1 ? RunStateText::tr("1 Codex process running")
                      : RunStateText::tr("%n Codex processes running", nullptr, n);
    case RunPart::waiting:
        return n == 1 ? RunStateText::tr("1 Codex process waiting")
                      : RunStateText::tr("%n Codex processes waiting", nullptr, n);
    case RunPart::idle:
        break;
    }
    return n == 1 ? RunStateText::tr("1 Codex process idle")
                  : RunStateText::tr("%n Codex processes idle", nullptr, n);
}

// "3 total · 1 running · 2 idle"; with waiting sessions, only the states
// that hold any: "2 total · 1 running · 1 waiting".
[[nodiscard]] QString totalRunningIdle(const CodexRunState::Observed& observed) {
    QString text = RunStateText::tr("%n total", nullptr, static_cast<int>(observed.total));
    const std::pair<qint64, RunPart> parts[] = {{observed.running, RunPart::running},
                                                {observed.waiting, RunPart::waiting},
                                                {observed.idle, RunPart::idle}};
    for (const auto& [count, part] : parts) {
        if (count > 0 || (observed.waiting == 0 && part != RunPart::waiting))
            text += u" \u00B7 " + countedPart(count, part);
    }
    return text;
}

// The one state all sessions are in, if they are all in one.
[[nodiscard]] std::optional<std::pair<qint64, RunPart>>
soleState(const CodexRunState::Observed& observed) {
    const std::pair<qint64, RunPart> parts[] = {{observed.running, RunPart::running},
                                                {observed.waiting, RunPart::waiting},
                                                {observed.idle, RunPart::idle}};
    for (const auto& part : parts) {
        if (part.first == observed.total)
            return part;
    }
    return std::nullopt;
}

} // namespace

QString rawValue(ProcessActivityStatus status) {
    switch (status) {
    case ProcessActivityStatus::running:
        return QStringLiteral("running");
    case ProcessActivityStatus::waiting:
        return QStringLiteral("waiting");
    case ProcessActivityStatus::idle:
        break;
    }
    return QStringLiteral("idle");
}

QString rawValue(StatusSource source) {
    return source == StatusSource::log ? QStringLiteral("log") : QStringLiteral("cpu");
}

CodexRunState CodexRunState::observed(qint64 total, qint64 running, qint64 idle, qint64 waiting,
                                      QStringList waitingProjects) {
    return CodexRunState(Observed{total, running, idle, waiting, std::move(waitingProjects)});
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
            const auto sole = soleState(observed);
            if (sole && !observed.waitingProjects.isEmpty())
                return RunStateText::tr("%1 in %2")
                    .arg(countedProcesses(sole->first, sole->second),
                         observed.waitingProjects.join(u", "));
            QString text =
                sole ? countedProcesses(sole->first, sole->second) : totalRunningIdle(observed);
            if (!observed.waitingProjects.isEmpty())
                text = RunStateText::tr("%1 \u2014 waiting in %2")
                           .arg(text, observed.waitingProjects.join(u", "));
            return text;
        },
        [](const CodexRunState::Error& error) -> QString {
            return RunStateText::tr("Codex process detection failed: %1").arg(error.message);
        },
        [](const CodexRunState::Idle&) -> QString {
            return RunStateText::tr("No Codex CLI process detected");
        });
}

QString durationText(qint64 seconds) {
    seconds = std::max<qint64>(0, seconds);
    constexpr qint64 minute = 60, hour = 60 * minute, day = 24 * hour;
    if (seconds < minute)
        return RunStateText::tr("%1 s", "seconds").arg(seconds);
    if (seconds < hour)
        return RunStateText::tr("%1 min", "minutes").arg(seconds / minute);
    if (seconds < day)
        return RunStateText::tr("%1 h", "hours").arg(seconds / hour);
    return RunStateText::tr("%1 d", "days").arg(seconds / day);
}

QString abbreviatedDirectory(const QString& directory, const QString& home) {
    if (home.isEmpty() || home == u"/")
        return directory;
    if (directory == home)
        return QStringLiteral("~");
    if (directory.startsWith(home) && directory.at(home.size()) == u'/')
        return u'~' + directory.mid(home.size());
    return directory;
}

QString projectName(const ProcessMatch& match, const QString& home) {
    if (match.cwd.isEmpty())
        return QStringLiteral("PID ") + QString::number(match.pid);
    const QString shown = abbreviatedDirectory(match.cwd, home);
    if (shown == u"~" || shown == u"/")
        return shown;
    return shown.section(u'/', -1, -1, QString::SectionSkipEmpty);
}

CodexProcessMonitor::CodexProcessMonitor(QObject* parent)
    : CodexProcessMonitor([] { return scanCodexProcesses(); }, &QDateTime::currentDateTimeUtc,
                          parent, &readSessionLogs) {}

CodexProcessMonitor::CodexProcessMonitor(ScanFunction scan, WallClock clock, QObject* parent,
                                         LogFunction logs)
    : QObject(parent)
    , m_scan(std::move(scan))
    , m_logs(std::move(logs))
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
    m_scanWatcher.setFuture(QtConcurrent::run(
        &m_scanPool, [scan = m_scan, logs = m_logs] { return runScan(scan, logs); }));
}

void CodexProcessMonitor::onLoopWakeUp() {
    refresh();
}

void CodexProcessMonitor::cancelRefreshForTesting() {
    if (m_refreshInFlight)
        m_scanWatcher.cancel();
}

CodexProcessMonitor::ScanOutcome CodexProcessMonitor::runScan(const ScanFunction& scan,
                                                              const LogFunction& logs) noexcept {
    lowerOwnThreadPriority();
    const QString scanCause = QStringLiteral("monitor:scan");
    const auto scanFailed = [&scanCause](const QString& message) -> ScanOutcome {
        logFailureOnce(lcMonitor(), scanCause,
                       QStringLiteral("the process table could not be read: %1").arg(message));
        return {{}, {}, message};
    };
    // Nothing may escape the worker: every failure becomes a text.
    try {
        ScanOutcome outcome{scan(), {}, std::nullopt};
        // A log that cannot be read leaves its session to the CPU rule.
        try {
            if (logs)
                outcome.logs = logs(outcome.samples);
        } catch (...) {
            logFailureOnce(
                lcMonitor(), QStringLiteral("monitor:logs"),
                QStringLiteral(
                    "reading the session logs failed: all sessions are judged by CPU use"));
            outcome.logs.clear();
        }
        failureCleared(scanCause);
        return outcome;
    } catch (const ProcessSnapshotError& error) {
        return scanFailed(error.message());
    } catch (const std::exception& error) {
        return scanFailed(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        return scanFailed(RunStateText::tr("Unknown error while reading the process table"));
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
            Classification classification = classify(outcome.samples, m_clock(), outcome.logs);
            publish(this, m_matches, std::move(classification.matches),
                    &CodexProcessMonitor::matchesChanged);
            m_historyByPID = std::move(classification.history);
            // Published only when they change, so the design's order of
            // notices per refresh stays as it is.
            if (auto limits = updatedAccountLimits(m_accountLimits, outcome.logs);
                limits != m_accountLimits)
                publish(this, m_accountLimits, std::move(limits),
                        &CodexProcessMonitor::accountLimitsChanged);
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

namespace {

// The status a session log decides, or nothing where it does not.
// `commandRan`: a command of the session was seen since its pending tool
// call was written.
std::optional<ProcessActivityStatus> statusFromLog(const CodexProcessMonitor::LogState& log,
                                                   const DetectedProcessSample& sample,
                                                   bool commandRan, const QDateTime& now) {
    if (!log)
        return std::nullopt;
    switch (log->phase) {
    case TurnPhase::running:
        return ProcessActivityStatus::running;
    case TurnPhase::awaitingToolOutput: {
        // A tool call without output is a command at work, or an approval
        // question when no command runs. Codex writes the call before it
        // forks its sandbox, so a call that young is a command starting;
        // and a question always comes before its command, so once one ran
        // the call is running until Codex writes its output.
        const bool starting =
            log->phaseSince &&
            log->phaseSince->msecsTo(now) < CodexProcessMonitor::commandStartAllowance.count();
        return sample.runningCommands > 0 || starting || commandRan
                   ? ProcessActivityStatus::running
                   : ProcessActivityStatus::waiting;
    }
    case TurnPhase::idle:
    case TurnPhase::notStarted: // whatever its start-up costs
        return ProcessActivityStatus::idle;
    case TurnPhase::unknown:
        break;
    }
    return std::nullopt;
}

} // namespace

CodexProcessMonitor::Classification
CodexProcessMonitor::classify(const QList<DetectedProcessSample>& samples, const QDateTime& now,
                              const QList<LogState>& logs) const {
    Classification result;
    result.matches.reserve(samples.size());
    result.history.reserve(samples.size());
    for (qsizetype i = 0; i < samples.size(); ++i) {
        const DetectedProcessSample& sample = samples[i];
        const auto previous = m_historyByPID.constFind(sample.pid);
        const bool seenBefore = previous != m_historyByPID.constEnd();

        // CPU use over the interval counts once it is more than the ticks an
        // idle Codex wakes up for, so those wake-ups never read as work.
        const double seconds =
            seenBefore ? static_cast<double>(previous->seenAt.msecsTo(now)) / 1000.0 : 0.0;
        const double interval =
            seconds > 0 ? seconds : std::chrono::duration<double>(refreshInterval).count();
        const bool aboveNoise = sample.totalCPUPercent / 100.0 * interval > cpuNoise;
        const bool busyNow = sample.hasHotState ||
                             (sample.totalCPUPercent >= cpuActivityThreshold && aboveNoise) ||
                             (seenBefore && sample.cumulativeCPUTime - previous->cumulativeCPUTime >
                                                std::max(cpuAdvanceThreshold, cpuNoise));

        std::optional<QDateTime> lastBusyAt;
        if (busyNow)
            lastBusyAt = now;
        else if (seenBefore)
            lastBusyAt = previous->lastBusyAt;

        const LogState& log = i < logs.size() ? logs[i] : LogState();
        const bool awaitingCall = log && log->phase == TurnPhase::awaitingToolOutput;
        const bool commandRan = awaitingCall && log->phaseSince && seenBefore &&
                                previous->commandSeenFor == log->phaseSince;
        const std::optional<ProcessActivityStatus> logged =
            statusFromLog(log, sample, commandRan, now);
        ProcessActivityStatus status;
        if (logged) {
            status = *logged;
        } else {
            // A lastBusyAt ahead of now (the clock was set back) is within grace.
            const bool withinGrace =
                lastBusyAt &&
                static_cast<double>(lastBusyAt->msecsTo(now)) / 1000.0 <= busyGracePeriod;
            status = busyNow || withinGrace ? ProcessActivityStatus::running
                                            : ProcessActivityStatus::idle;
        }
        // Since when: kept while the status holds; a log tells when its turn
        // changed, which may be before this program saw the session.
        std::optional<QDateTime> since;
        if (seenBefore && previous->status == status)
            since = previous->since;
        else if (logged && log->phaseSince)
            // Never ahead of now (a log written on a clock ahead of ours), never
            // before this program last saw the session in another status.
            since = std::min(
                seenBefore ? std::max(*log->phaseSince, previous->seenAt) : *log->phaseSince, now);
        else
            since = now;

        result.matches.append(ProcessMatch{
            .pid = sample.pid,
            .command = sample.command,
            .status = status,
            .instantaneousCPUPercent = sample.totalCPUPercent,
            .cumulativeCPUTime = sample.cumulativeCPUTime,
            .memberCount = sample.memberCount,
            .processCount = sample.processCount,
            .cwd = sample.cwd,
            .startedAt = sample.startedAt,
            .since = since,
            .source = logged ? StatusSource::log : StatusSource::cpu,
            .lastMessage = log ? log->lastAgentMessageLine.value_or(QString()) : QString(),
            .model = log ? log->model.value_or(QString()) : QString(),
            .tokens = log && log->tokens ? std::optional(log->tokens->totalTokens) : std::nullopt,
            .contextLeftPercent =
                log && log->tokens ? contextLeftPercent(*log->tokens) : std::nullopt});
        result.history.insert(
            sample.pid,
            ActivityHistory{.commandSeenFor =
                                awaitingCall && (commandRan || sample.runningCommands > 0)
                                    ? log->phaseSince
                                    : std::nullopt,
                            .cumulativeCPUTime = sample.cumulativeCPUTime,
                            .lastBusyAt = lastBusyAt,
                            .seenAt = now,
                            .status = status,
                            .since = since});
    }
    return result;
}

CodexRunState runStateOf(const QList<ProcessMatch>& matches,
                         const std::optional<QString>& lastError) {
    if (lastError)
        return CodexRunState::error(*lastError);
    if (matches.isEmpty())
        return CodexRunState::idle();
    qint64 running = 0;
    QStringList waitingProjects;
    for (const ProcessMatch& match : matches) {
        if (match.status == ProcessActivityStatus::running)
            ++running;
        else if (match.status == ProcessActivityStatus::waiting)
            waitingProjects.append(projectName(match));
    }
    const auto total = static_cast<qint64>(matches.size());
    const auto waiting = static_cast<qint64>(waitingProjects.size());
    return CodexRunState::observed(total, running, total - running - waiting, waiting,
                                   std::move(waitingProjects));
}

QString summaryText(const CodexRunState& state, bool checking) {
    if (checking)
        return RunStateText::tr("Checking for Codex CLI processes\u2026");
    return state.visit(
        [](const CodexRunState::Observed& observed) -> QString {
            if (const auto sole = soleState(observed))
                return countedPart(sole->first, sole->second);
            return totalRunningIdle(observed);
        },
        [](const CodexRunState::Error&) -> QString {
            return RunStateText::tr("Process detection failed");
        },
        [](const CodexRunState::Idle&) -> QString {
            return RunStateText::tr("No Codex CLI process detected");
        });
}

CodexRunState CodexProcessMonitor::runState() const {
    return runStateOf(m_matches, m_lastError);
}

QString CodexProcessMonitor::summary() const {
    return summaryText(runState(), !m_lastUpdated && !m_lastError && m_matches.isEmpty());
}

} // namespace brenvik
