#pragma once

#include "detection/ProcessSnapshot.h"

#include <QHash>
#include <QList>
#include <QSet>

namespace brenvik {

// A session while the pass builds it: the Codex and launcher processes it is
// made of (its members) and the whole process tree below its root.
struct ActivityAggregate {
    ObservedProcess root;
    QSet<qint64> memberPIDs;
    qint64 processCount = 0; // every process of the tree, members included
    double totalCPUPercent = 0;
    double cumulativeCPUTime = 0;
    bool hasHotState = false;
};

// The result of one pass for one Codex session, keyed by its root: the
// outermost launcher of what the user started (a TUI, `codex exec`, an
// editor's app-server, codex-acp, an acpx codex agent).
struct DetectedProcessSample {
    qint64 pid = 0;
    QString command;
    // Over the whole tree: members, tool commands, sandboxes, builds.
    double totalCPUPercent = 0;
    double cumulativeCPUTime = 0;
    bool hasHotState = false;
    qint64 memberCount = 0;  // the Codex and launcher processes
    qint64 processCount = 0; // the whole tree, at least memberCount
    QString cwd;             // the project directory; empty when unknown
    std::optional<QDateTime> startedAt;
    bool interactive = false; // a TUI, served by the shared service
    // Tool commands running for it now: sandboxes and shells its Codex
    // processes started.
    qint64 runningCommands = 0;
    // Where its session log may be open: its own Codex executables and, for a
    // TUI, the shared services (known only where the source reads exe).
    QList<qint64> logHolderPIDs;

    friend bool operator==(const DetectedProcessSample&, const DetectedProcessSample&) = default;
};

// Finds the Codex sessions of one snapshot; ascending root PID. A PID
// repeated in the rows: the first wins. Zombies take no part. Codex processes
// below another Codex process belong to its session; the shared background
// service is no session, and its work for a TUI counts for that TUI where the
// project directory tells which one it is.
// With `processesOfInterest`, also every process the sessions and services
// are made of, for the source's next snapshot.
[[nodiscard]] QList<DetectedProcessSample>
detectCodexProcesses(const QList<ObservedProcess>& rows,
                     QSet<qint64>* processesOfInterest = nullptr);

// R, U or D (first character, trimmed, any case).
[[nodiscard]] bool isHotState(QStringView state);

// One detection pass over a snapshot of the platform's default source (kept
// for the life of the process, so interval CPU figures span two scans).
// Blocking; throws ProcessSnapshotError. Callers run one scan at a time.
[[nodiscard]] QList<DetectedProcessSample> scanCodexProcesses();

// The same over a given source.
[[nodiscard]] QList<DetectedProcessSample> scanCodexProcesses(ProcessTableSource& source);

} // namespace brenvik
