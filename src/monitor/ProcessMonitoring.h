#pragma once

#include "detection/ProcessTree.h"
#include "monitor/AccountLimits.h"
#include "sessionlog/SessionLogState.h"

#include <QDateTime>
#include <QDir>
#include <QFutureWatcher>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>
#include <chrono>
#include <functional>
#include <optional>
#include <variant>

namespace brenvik {

// running: a turn is open (or, without a log, the tree works); waiting: the
// turn waits for the user to approve a tool call; idle: neither.
enum class ProcessActivityStatus { running, waiting, idle };

// "running" / "waiting" / "idle".
[[nodiscard]] QString rawValue(ProcessActivityStatus status);

// What decided a session's status: its session log, or its CPU use.
enum class StatusSource { cpu, log };

// "cpu" / "log".
[[nodiscard]] QString rawValue(StatusSource source);

// One Codex session as shown, identified by its root PID.
struct ProcessMatch {
    qint64 pid = 0;
    QString command; // as read: not lower-cased, not shortened
    ProcessActivityStatus status = ProcessActivityStatus::idle;
    double instantaneousCPUPercent = 0; // the whole tree's
    double cumulativeCPUTime = 0;       // the whole tree's
    qint64 memberCount = 0;             // Codex and launcher processes
    qint64 processCount = 0;            // the whole tree
    QString cwd;                        // the project directory; empty when unknown
    std::optional<QDateTime> startedAt; // UTC
    std::optional<QDateTime> since;     // UTC: when it took its status
    StatusSource source = StatusSource::cpu;
    QString lastMessage;          // the first line of the agent's last message, from the log
    QString model;                // of the latest turn, from the log; empty when unknown
    std::optional<qint64> tokens; // used in the session so far
    std::optional<int> contextLeftPercent; // of the model's context window

    [[nodiscard]] qint64 id() const noexcept { return pid; }
    friend bool operator==(const ProcessMatch&, const ProcessMatch&) = default;
};

namespace detail {
template <class... Handlers> struct Overloaded : Handlers... { using Handlers::operator()...; };
} // namespace detail

// The overall state every surface shows.
class CodexRunState {
public:
    struct Observed {
        qint64 total = 0;
        qint64 running = 0;
        qint64 idle = 0;
        qint64 waiting = 0;
        QStringList waitingProjects; // projectName() of each waiting session
    };
    struct Error {
        QString message;
    };
    struct Idle {};
    using Value = std::variant<Observed, Error, Idle>;

    [[nodiscard]] static CodexRunState observed(qint64 total, qint64 running, qint64 idle,
                                                qint64 waiting = 0,
                                                QStringList waitingProjects = {});
    [[nodiscard]] static CodexRunState error(QString message);
    [[nodiscard]] static CodexRunState idle();

    [[nodiscard]] const Value& value() const noexcept { return m_value; }
    [[nodiscard]] const Observed* asObserved() const noexcept {
        return std::get_if<Observed>(&m_value);
    }
    [[nodiscard]] const Error* asError() const noexcept { return std::get_if<Error>(&m_value); }
    [[nodiscard]] bool isIdle() const noexcept { return std::holds_alternative<Idle>(m_value); }

    // Calls the handler that takes the current case (Observed, Error or Idle).
    template <class... Handlers> decltype(auto) visit(Handlers&&... handlers) const {
        return std::visit(detail::Overloaded{std::forward<Handlers>(handlers)...}, m_value);
    }

private:
    explicit CodexRunState(Value value)
        : m_value(std::move(value)) {}
    Value m_value;
};

// The run state of these matches, or of the failure that replaced them.
[[nodiscard]] CodexRunState runStateOf(const QList<ProcessMatch>& matches,
                                       const std::optional<QString>& lastError);
// The status header's line: "2 running", "3 total · 1 running · 2 idle";
// while `checking` (no refresh has ended yet), that it is looking.
[[nodiscard]] QString summaryText(const CodexRunState& state, bool checking);

// The tool tip line: "2 Codex processes running", "Codex process detection failed: …";
// with waiting sessions, the projects they wait in.
[[nodiscard]] QString detailText(const CodexRunState& state);

// How long, in the one unit people read at a glance: "45 s", "2 min", "3 h",
// "2 d". Negative counts as 0.
[[nodiscard]] QString durationText(qint64 seconds);

// A project directory as people read it: "~" for the home folder and below it.
[[nodiscard]] QString abbreviatedDirectory(const QString& directory,
                                           const QString& home = QDir::homePath());

// A project's short name: its directory's last name ("~" for the home folder),
// or "PID n" when the directory is unknown.
[[nodiscard]] QString projectName(const ProcessMatch& match,
                                  const QString& home = QDir::homePath());

// Watches the process table: a refresh at start and every 2 seconds, the scan
// off the GUI thread, each group judged running or idle against the previous
// refresh. Published properties follow publish() in Published.h.
class CodexProcessMonitor : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<brenvik::ProcessMatch> matches READ matches NOTIFY matchesChanged)
    Q_PROPERTY(std::optional<QDateTime> lastUpdated READ lastUpdated NOTIFY lastUpdatedChanged)
    Q_PROPERTY(std::optional<QString> lastError READ lastError NOTIFY lastErrorChanged)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY isRefreshingChanged)
    Q_PROPERTY(
        QList<brenvik::AccountLimits> accountLimits READ accountLimits NOTIFY accountLimitsChanged)

public:
    struct ActivityHistory {
        // The pending tool calls (by when the log says they began) for which
        // a command of the session was seen.
        std::optional<QDateTime> commandSeenFor;
        double cumulativeCPUTime = 0;
        std::optional<QDateTime> lastBusyAt;
        QDateTime seenAt; // the refresh that wrote this record
        ProcessActivityStatus status = ProcessActivityStatus::idle;
        std::optional<QDateTime> since;
    };
    using HistoryMap = QHash<qint64, ActivityHistory>;
    struct Classification {
        QList<ProcessMatch> matches;
        HistoryMap history;
    };

    using ScanFunction = std::function<QList<DetectedProcessSample>()>;
    // What each sample's session log says, one entry per sample (fewer: no
    // log for the rest). Runs after the scan, off the GUI thread.
    using LogState = std::optional<SessionLogState>;
    using LogFunction = std::function<QList<LogState>(const QList<DetectedProcessSample>&)>;
    // UTC by default, so that a time zone change cannot move the grace period.
    using WallClock = std::function<QDateTime()>;

    static constexpr std::chrono::milliseconds refreshInterval{2000};
    static constexpr double busyGracePeriod = 8.0;      // seconds
    static constexpr double cpuActivityThreshold = 0.4; // percent of one core
    static constexpr double cpuAdvanceThreshold = 0.02; // seconds of CPU time
    // The kernel counts CPU time in ticks of 10 ms. One or two ticks in an
    // interval are a timer or a spinner waking up (an idle Codex does every
    // few seconds), not work: a tree must use more to count as busy.
    static constexpr double cpuNoise = 0.025; // seconds of CPU time
    // From writing a tool call to its command's first process, Codex forks
    // and re-executes itself into its sandbox: a few hundred milliseconds,
    // more under load. No question to the user is that young.
    static constexpr std::chrono::milliseconds commandStartAllowance{2000};

    // Scans with scanCodexProcesses(), reads the session logs with
    // readSessionLogs() and the system clock.
    explicit CodexProcessMonitor(QObject* parent = nullptr);
    // Without a log function every session is judged by its CPU use.
    CodexProcessMonitor(ScanFunction scan, WallClock clock, QObject* parent = nullptr,
                        LogFunction logs = {});
    ~CodexProcessMonitor() override;

    [[nodiscard]] const QList<ProcessMatch>& matches() const noexcept { return m_matches; }
    [[nodiscard]] const std::optional<QDateTime>& lastUpdated() const noexcept {
        return m_lastUpdated;
    }
    [[nodiscard]] const std::optional<QString>& lastError() const noexcept { return m_lastError; }
    [[nodiscard]] bool isRefreshing() const noexcept { return m_isRefreshing; }
    // Per CODEX_HOME, the newest limits its sessions' logs reported since start.
    [[nodiscard]] const QList<AccountLimits>& accountLimits() const noexcept {
        return m_accountLimits;
    }
    [[nodiscard]] const HistoryMap& historyByPID() const noexcept { return m_historyByPID; }

    // First refresh at once, then one every refreshInterval. Idempotent.
    void start();
    // Starts a refresh unless one is in flight; overlapping requests are dropped.
    void refresh();

    // The log, where one was found and decides, sets the status at once;
    // otherwise the tree's CPU use does, with its grace period.
    [[nodiscard]] Classification classify(const QList<DetectedProcessSample>& samples,
                                          const QDateTime& now,
                                          const QList<LogState>& logs = {}) const;

    [[nodiscard]] CodexRunState runState() const;
    [[nodiscard]] QString summary() const;

    // Test hooks. What one wake-up of the loop does, without waiting for it.
    void wakeUpForTesting() { onLoopWakeUp(); }
    // Abandons the wait for the scan in flight (the scan itself runs to its
    // end); the refresh then ends as a cancelled one.
    void cancelRefreshForTesting();

Q_SIGNALS:
    void objectWillChange();
    void matchesChanged(const QList<brenvik::ProcessMatch>& matches);
    void lastUpdatedChanged(const std::optional<QDateTime>& lastUpdated);
    void lastErrorChanged(const std::optional<QString>& lastError);
    void isRefreshingChanged(bool isRefreshing);
    void accountLimitsChanged(const QList<brenvik::AccountLimits>& accountLimits);

private Q_SLOTS:
    void onLoopWakeUp();
    void onScanFinished();

private:
    // What the worker hands back: the samples, or the text of the failure.
    struct ScanOutcome {
        QList<DetectedProcessSample> samples;
        QList<LogState> logs;
        std::optional<QString> error;
    };

    [[nodiscard]] static ScanOutcome runScan(const ScanFunction& scan,
                                             const LogFunction& logs) noexcept;
    void finishRefresh();

    QList<ProcessMatch> m_matches;
    std::optional<QDateTime> m_lastUpdated;
    std::optional<QString> m_lastError;
    bool m_isRefreshing = false;
    QList<AccountLimits> m_accountLimits;
    HistoryMap m_historyByPID;

    ScanFunction m_scan;
    LogFunction m_logs;
    WallClock m_clock;
    bool m_refreshInFlight = false; // set and cleared alongside isRefreshing
    QTimer m_loop;                  // active once start() ran
    QThreadPool m_scanPool;         // one low-priority worker: one scan at a time
    QFutureWatcher<ScanOutcome> m_scanWatcher;
};

} // namespace brenvik
