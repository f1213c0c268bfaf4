#pragma once

#include "detection/ProcessSnapshot.h"

#include <QHash>
#include <QList>
#include <QSet>

namespace brenvik {

// A group while the pass builds it.
struct ActivityAggregate {
    ObservedProcess root;
    QSet<qint64> memberPIDs;
    double totalCPUPercent = 0;
    double cumulativeCPUTime = 0;
    bool hasHotState = false;
};

// The result of one pass for one group, keyed by its root.
struct DetectedProcessSample {
    qint64 pid = 0;
    QString command;
    double totalCPUPercent = 0;
    double cumulativeCPUTime = 0;
    bool hasHotState = false;
    qint64 memberCount = 0;

    friend bool operator==(const DetectedProcessSample&, const DetectedProcessSample&) = default;
};

// Groups the Codex CLI processes of one snapshot under their outermost
// launchers; ascending root PID. A PID repeated in the rows: the first wins.
[[nodiscard]] QList<DetectedProcessSample> detectCodexProcesses(const QList<ObservedProcess>& rows);

// The candidate first, its root last. Stops at a missing parent, at a parent
// that is no link, and if a PID repeats within the chain.
[[nodiscard]] QList<ObservedProcess>
launcherChain(const ObservedProcess& candidate,
              const QHash<qint64, ObservedProcess>& processesByPID);

// R, U or D (first character, trimmed, any case).
[[nodiscard]] bool isHotState(QStringView state);

// One detection pass over a snapshot of the platform's default source (kept
// for the life of the process, so interval CPU figures span two scans).
// Blocking; throws ProcessSnapshotError. Callers run one scan at a time.
[[nodiscard]] QList<DetectedProcessSample> scanCodexProcesses();

// The same over a given source.
[[nodiscard]] QList<DetectedProcessSample> scanCodexProcesses(ProcessTableSource& source);

} // namespace brenvik
