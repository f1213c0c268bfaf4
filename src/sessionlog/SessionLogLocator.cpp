#include "sessionlog/SessionLogLocator.h"

#include "detection/FailureLog.h"
#include "sessionlog/SessionLogLogging.h"
#include "sessionlog/SessionLogPath.h"

#include <QFile>
#include <QSet>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace brenvik {

namespace {

struct DirectoryCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

constexpr QStringView kDeleted = u" (deleted)";

} // namespace

SessionLogLocator::SessionLogLocator(QString procRoot)
    : m_procRoot(std::move(procRoot)) {}

std::optional<QList<SessionLogLocator::OpenLog>> SessionLogLocator::openLogs(qint64 pid) const {
    const QString fdPath = m_procRoot + u'/' + QString::number(pid) + QStringLiteral("/fd");
    const QByteArray nativeFdPath = QFile::encodeName(fdPath);
    const std::unique_ptr<DIR, DirectoryCloser> dir(::opendir(nativeFdPath.constData()));
    if (!dir)
        return std::nullopt; // gone, or another user's
    QList<OpenLog> logs;
    char target[4096];
    while (const dirent* entry = ::readdir(dir.get())) {
        if (entry->d_name[0] == '.')
            continue;
        const ssize_t length =
            ::readlinkat(::dirfd(dir.get()), entry->d_name, target, sizeof target);
        // Sockets, pipes and anonymous files read "socket:[…]": no slash first.
        if (length <= 0 || size_t(length) == sizeof target || target[0] != '/')
            continue;
        const QString path = QString::fromUtf8(target, length);
        if (!isSessionLogPath(path))
            continue;
        OpenLog log;
        const bool deleted = path.endsWith(kDeleted);
        // A deleted log is still there for whoever holds it: read it through the link.
        log.path = deleted ? fdPath + u'/' + QString::fromLatin1(entry->d_name) : path;
        log.identity = deleted ? path.chopped(kDeleted.size()) : path;
        struct stat status {};
        if (::fstatat(::dirfd(dir.get()), entry->d_name, &status, 0) == 0)
            log.modifiedMs =
                qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
        logs.append(log);
    }
    return logs;
}

std::optional<SessionLogLocator::Chosen>
SessionLogLocator::chooseLog(const DetectedProcessSample& sample,
                             const QList<DetectedProcessSample>& samples,
                             const LogsByHolder& logsByHolder) {
    if (sample.interactive) {
        if (sample.cwd.isEmpty())
            return std::nullopt;
        for (const DetectedProcessSample& other : samples) {
            if (&other != &sample && other.interactive && other.cwd == sample.cwd)
                return std::nullopt; // two TUIs in one directory: cannot tell
        }
    }
    const qint64 startedMs = sample.startedAt ? sample.startedAt->toMSecsSinceEpoch() : 0;
    std::optional<OpenLog> chosen;
    bool lookedInto = false;
    QSet<QString> seen;
    for (const qint64 holder : sample.logHolderPIDs) {
        const auto logs = logsByHolder.constFind(holder);
        if (logs == logsByHolder.cend() || !*logs)
            continue;
        lookedInto = true;
        for (const OpenLog& log : **logs) {
            if (seen.contains(log.identity))
                continue;
            seen.insert(log.identity);
            if (sample.interactive) {
                // The service holds the logs of every TUI it served, finished
                // ones too: only this directory's, written since this TUI started.
                if (log.modifiedMs < startedMs)
                    continue;
                const SessionLogState state = m_logs.stateOf(log.path);
                if (!state.meta || state.meta->cwd != sample.cwd)
                    continue;
            }
            if (!chosen || log.modifiedMs > chosen->modifiedMs)
                chosen = log;
        }
    }
    if (!chosen)
        return lookedInto ? std::optional(Chosen{{}, {}, true}) : std::nullopt;
    return Chosen{chosen->path, chosen->identity};
}

QList<std::optional<SessionLogState>>
SessionLogLocator::statesOf(const QList<DetectedProcessSample>& samples) noexcept {
    QList<std::optional<SessionLogState>> states;
    try {
        states.resize(samples.size());
        LogsByHolder logsByHolder;
        for (const DetectedProcessSample& sample : samples) {
            for (const qint64 holder : sample.logHolderPIDs) {
                if (!logsByHolder.contains(holder))
                    logsByHolder.insert(holder, openLogs(holder));
            }
        }
        QSet<QString> used;
        QHash<qint64, HeldLog> heldLogs;
        for (qsizetype i = 0; i < samples.size(); ++i) {
            const DetectedProcessSample& sample = samples[i];
            const qint64 startedMs = sample.startedAt ? sample.startedAt->toMSecsSinceEpoch() : 0;
            std::optional<QString> path;
            QString identity;
            const auto chosen = chooseLog(sample, samples, logsByHolder);
            if (chosen && !chosen->none) {
                path = chosen->path;
                identity = chosen->identity;
                // A deleted log's descriptor link may name another file later.
                if (chosen->path == chosen->identity)
                    heldLogs.insert(sample.pid, HeldLog{startedMs, chosen->path});
            } else if (const auto held = m_heldLogs.constFind(sample.pid);
                       !sample.interactive && held != m_heldLogs.cend() &&
                       held->startedMs == startedMs) {
                // Closed, not replaced: what it last said still holds. (A TUI's
                // logs stay open in the service; where it has none, nobody can
                // tell which one is its own.)
                path = identity = held->path;
                heldLogs.insert(sample.pid, *held);
            }
            if (!path) {
                if (chosen) {
                    states[i].emplace();
                    states[i]->phase = TurnPhase::notStarted;
                }
                continue;
            }
            used.insert(*path);
            states[i] = m_logs.stateOf(*path);
            states[i]->codexHome = codexHomeOf(identity);
        }
        m_heldLogs = std::move(heldLogs);
        // Logs a TUI matched against stay read, so the next refresh only reads
        // what they grew by.
        for (const std::optional<QList<OpenLog>>& logs : std::as_const(logsByHolder)) {
            if (!logs)
                continue;
            for (const OpenLog& log : *logs)
                used.insert(log.path);
        }
        m_logs.retainOnly(used);
    } catch (...) {
        // Out of memory at worst: every session falls back to its CPU use.
        logFailureOnce(
            lcSessionLog(), QStringLiteral("locator"),
            QStringLiteral("could not match sessions to their logs: all are judged by CPU use"));
        states.clear();
    }
    return states;
}

QList<std::optional<SessionLogState>>
readSessionLogs(const QList<DetectedProcessSample>& samples) noexcept {
    static std::mutex mutex;
    static SessionLogLocator locator;
    const std::scoped_lock lock(mutex);
    return locator.statesOf(samples);
}

} // namespace brenvik
