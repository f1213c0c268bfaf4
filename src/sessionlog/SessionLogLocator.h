#pragma once

#include "detection/ProcessTree.h"
#include "sessionlog/SessionLogCache.h"

#include <QHash>
#include <QList>
#include <QString>
#include <optional>

namespace brenvik {

// Finds each session's log through the files its Codex processes hold open
// and reads what it says. A TUI's log is held by the shared service, which
// keeps the logs of every TUI it served: the one for a TUI is the log written
// in its project directory since it started; where two live TUIs share a
// directory nobody can tell their logs apart, and neither gets one.
// Codex writes a session's log the moment its first turn starts, so a session
// whose log holders can be looked into and hold none has had no turn yet.
// codex exec closes its log when its turn is over but may live on (writing
// its answer to a slow reader); a session that holds no log any more keeps
// the one it held, which tells that its turn is over.
// Not thread-safe: one refresh at a time, as the scan runs.
class SessionLogLocator {
public:
    explicit SessionLogLocator(QString procRoot = QStringLiteral("/proc"));

    // One entry per sample, in order: the state of its log, or nothing.
    // Never throws.
    [[nodiscard]] QList<std::optional<SessionLogState>>
    statesOf(const QList<DetectedProcessSample>& samples) noexcept;

private:
    struct OpenLog {
        QString path;     // what to open: the file, or the fd link of a deleted one
        QString identity; // the file's own path, the same for every holder
        qint64 modifiedMs = 0;
    };

    // The logs a process holds open; nothing where its files cannot be listed.
    [[nodiscard]] std::optional<QList<OpenLog>> openLogs(qint64 pid) const;
    using LogsByHolder = QHash<qint64, std::optional<QList<OpenLog>>>;
    // What chooseLog() found: the log, with its identity, which differs from
    // the path only for a deleted file read through its holder's descriptor;
    // or that it has none yet; or nothing, where nobody can tell.
    struct Chosen {
        QString path;
        QString identity;
        bool none = false; // its holders hold no log of it: no turn yet
    };
    [[nodiscard]] std::optional<Chosen> chooseLog(const DetectedProcessSample& sample,
                                                  const QList<DetectedProcessSample>& samples,
                                                  const LogsByHolder& logsByHolder);

    // The log a session last held, by its root PID and start time.
    struct HeldLog {
        qint64 startedMs = 0;
        QString path;
    };

    QString m_procRoot;
    SessionLogCache m_logs;
    QHash<qint64, HeldLog> m_heldLogs;
};

// The same over the live /proc, with one locator for the life of the process,
// so that each log is read only where it grew. Callers read one at a time.
[[nodiscard]] QList<std::optional<SessionLogState>>
readSessionLogs(const QList<DetectedProcessSample>& samples) noexcept;

} // namespace brenvik
