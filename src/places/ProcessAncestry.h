#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace brenvik {

// What the places need of one process: read only for a session's ancestors,
// when its place is looked up, never at a refresh.
struct AncestorProcess {
    qint64 pid = 0;
    qint64 ppid = 0;
    QString name;          // comm: at most 15 bytes, set by the program itself
    QStringList arguments; // argv; empty where unreadable
    qint64 uid = -1;       // the owner

    // argv[0]'s file name, else the name.
    [[nodiscard]] QString programName() const;
    friend bool operator==(const AncestorProcess&, const AncestorProcess&) = default;
};

// One process by PID, or none when it is gone or unreadable.
using ProcessLookup = std::function<std::optional<AncestorProcess>(qint64 pid)>;

// From /proc.
[[nodiscard]] std::optional<AncestorProcess> readProcess(qint64 pid);

// A variable of a process's environment from /proc: none when unreadable,
// empty when unset.
[[nodiscard]] std::optional<QString> readEnvironmentVariable(qint64 pid, QStringView name);

// The process and its ancestors, nearest first, up to (not including) PID 1.
// Ends early at a process that is gone, and at a loop.
[[nodiscard]] QList<AncestorProcess> ancestryOf(qint64 pid, const ProcessLookup& lookup);

} // namespace brenvik
