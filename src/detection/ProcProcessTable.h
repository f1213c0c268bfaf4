#pragma once

#include "detection/ProcessSnapshot.h"
#include "detection/ReReadPolicy.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>
#include <QSet>
#include <array>
#include <chrono>
#include <functional>

namespace brenvik {

// The fields of /proc/PID/stat the snapshot needs. The snapshot itself reads
// them with a QByteArrayView comm into its own buffer, so that the name is
// decoded only when a process is new.
template <typename Comm> struct BasicProcStat {
    qint64 pid = 0;
    Comm comm;
    char state = '?';
    qint64 ppid = 0;
    quint64 utimeTicks = 0;
    quint64 stimeTicks = 0;
    quint64 startTimeTicks = 0;
    quint64 flags = 0;

    [[nodiscard]] bool isKernelThread() const { return (flags & kKernelThreadFlag) != 0; }
    static constexpr quint64 kKernelThreadFlag = 0x00200000; // PF_KTHREAD

    friend bool operator==(const BasicProcStat&, const BasicProcStat&) = default;
};
using ProcStat = BasicProcStat<QString>;

// Parses the contents of /proc/PID/stat. The comm field is taken up to the
// last ")" because a process name may hold spaces and parentheses.
[[nodiscard]] std::optional<ProcStat> parseProcStat(QByteArrayView contents);

// Reads the process table from /proc. cpuPercent is the use over the interval
// since this source's previous snapshot, per (PID, start time); cpuTime has
// tick resolution. Command lines are cached and re-read only when a process is
// new, its comm changed, or its command line was empty (mid-exec). The
// executable, working directory and start time are read once per process,
// and only for Codex processes and their children. A zombie shows as ps
// shows it, "[comm] <defunct>", and keeps nothing of what it ran.
class ProcProcessTableSource final : public ProcessTableSource {
public:
    using SteadyClock = std::function<std::chrono::steady_clock::time_point()>;

    explicit ProcProcessTableSource(QString procRoot = QStringLiteral("/proc"),
                                    SteadyClock clock = &std::chrono::steady_clock::now);

    [[nodiscard]] QList<ObservedProcess> snapshot() override;
    void setProcessesOfInterest(QSet<qint64> pids) override;

    static constexpr int kRotationSlices = ReReadPolicy::kRotationSlices;

private:
    // What the previous snapshots taught about one process.
    struct Known {
        quint64 startTimeTicks = 0;
        QByteArray comm;             // as read from stat, compared without decoding
        bool commandIsFinal = false; // false: read it again next time
        bool isCodex = false;        // its children get their details read too
        quint64 generation = 0;      // the snapshot that last saw it; 0 = never
        bool isKernelThread = false;
        std::chrono::steady_clock::time_point readAt{};
        // As last read, with no CPU percent, for the snapshots that take the
        // row as it was. Its lowered command is kept where the line mentions
        // Codex; its arguments, where it may be Codex's.
        ObservedProcess row = {};
    };

    [[nodiscard]] const QString& stateText(char state);
    struct CommandLine {
        QString text;          // as ps shows it
        QStringList arguments; // where it may be Codex's, or wanted: each argument whole
    };
    [[nodiscard]] std::optional<CommandLine> readCommandLine(int pidDirectory, bool wantArguments);
    // Takes a new command line; reads the details when the process may be
    // Codex's or its parent is. False when it did not read them.
    bool learn(Known& known, int pidDirectory, qint64 ppid, QByteArrayView comm,
               quint64 startTimeTicks, QString command);
    // Its executable, working directory and start time.
    void readDetails(Known& known, int pidDirectory, quint64 startTimeTicks);
    // When it started: its stat's start time counts ticks since boot.
    [[nodiscard]] std::optional<QDateTime> startTimeOf(quint64 startTimeTicks) const;

    QString m_procRoot;
    SteadyClock m_clock;
    double m_ticksPerSecond = 100;
    std::optional<qint64> m_bootTimeSeconds; // since the epoch, from the stat file
    QHash<qint64, Known> m_known;
    QSet<qint64> m_ofInterest; // read at every snapshot
    std::optional<std::chrono::steady_clock::time_point> m_previousAt;
    ReReadPolicy m_reRead;
    qsizetype m_previousCount = 0;
    QByteArray m_cmdlineBuffer;            // reused: cmdline may be long
    std::array<QString, 256> m_stateTexts; // shared one-letter texts
};

} // namespace brenvik
