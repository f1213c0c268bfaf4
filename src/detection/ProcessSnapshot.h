#pragma once

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <exception>
#include <memory>
#include <optional>

namespace brenvik {

// One row of the process table.
struct ObservedProcess {
    qint64 pid = 0;
    qint64 ppid = 0;
    QString state;         // as printed, e.g. "Ss", "R+"; not validated
    double cpuPercent = 0; // percent of one core; may exceed 100
    double cpuTime = 0;    // cumulative seconds
    QString command;       // full command line, trimmed, never empty
    // lowerCasedCommand(command), where the source keeps it with the process
    // (the /proc source, for lines that mention Codex); empty otherwise.
    QString loweredCommand = {};
    // Each argument whole, where the source keeps them (the /proc source, for
    // command lines that may be Codex's); empty otherwise.
    QStringList arguments;
    // Known only where the source can tell, and read only for Codex processes
    // (and the children of Codex processes): empty or absent otherwise.
    QString executable;                 // the file that runs (/proc/PID/exe), maybe " (deleted)"
    QString cwd;                        // the working directory
    std::optional<QDateTime> startedAt; // UTC

    friend bool operator==(const ObservedProcess&, const ObservedProcess&) = default;
};

// A snapshot that could not be taken. Launch failures carry the system's own
// text; a non-zero exit of ps carries the domain "Brenvik.ProcessMonitor".
class ProcessSnapshotError : public std::exception {
public:
    ProcessSnapshotError(QString domain, qint64 code, QString message);

    [[nodiscard]] const QString& domain() const noexcept { return m_domain; }
    [[nodiscard]] qint64 code() const noexcept { return m_code; }
    [[nodiscard]] const QString& message() const noexcept { return m_message; }
    [[nodiscard]] const char* what() const noexcept override { return m_utf8.constData(); }

private:
    QString m_domain;
    qint64 m_code;
    QString m_message;
    QByteArray m_utf8;
};

inline const QString kProcessMonitorErrorDomain = QStringLiteral("Brenvik.ProcessMonitor");
// Failures the system reports by errno: the code is the errno value.
inline const QString kPosixErrorDomain = QStringLiteral("POSIX");

// One way of reading the process table. Sources may keep state between
// snapshots (the /proc source needs the previous one for interval CPU use),
// so a source is called from one thread at a time.
class ProcessTableSource {
public:
    virtual ~ProcessTableSource() = default;
    // Throws ProcessSnapshotError.
    [[nodiscard]] virtual QList<ObservedProcess> snapshot() = 0;
    // The processes the sessions are made of: a source that can read the
    // others less often must read these at every snapshot.
    virtual void setProcessesOfInterest(QSet<qint64> pids) { Q_UNUSED(pids); }
};

// The platform's default source: /proc where it exists, /bin/ps elsewhere.
// The only place that chooses.
[[nodiscard]] std::unique_ptr<ProcessTableSource> makeDefaultProcessTableSource();

// Parses one line of `ps -o pid=,ppid=,state=,%cpu=,time=,command=` output.
[[nodiscard]] std::optional<ObservedProcess> parseProcessLine(QStringView line);

// Parses the ps time column: S, M:S, H:M:S, each optionally with "D-" in front.
[[nodiscard]] double parseCPUTime(QStringView text);

} // namespace brenvik
