#include "places/ProcessAncestry.h"

#include "detection/ProcProcessTable.h"

#include <QFile>
#include <QSet>
#include <sys/stat.h>

namespace brenvik {

namespace {

// A real chain is a few dozen deep at most; the bound keeps a table that
// changes underfoot from walking forever.
constexpr int kMaxDepth = 128;

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.readAll() : QByteArray();
}

} // namespace

QString AncestorProcess::programName() const {
    if (!arguments.isEmpty() && !arguments.first().isEmpty())
        return arguments.first().section(u'/', -1);
    return name;
}

std::optional<AncestorProcess> readProcess(qint64 pid) {
    if (pid <= 0)
        return std::nullopt;
    const QString directory = u"/proc/" + QString::number(pid);
    struct stat info {};
    if (::stat(QFile::encodeName(directory).constData(), &info) != 0)
        return std::nullopt;
    const std::optional<ProcStat> stat = parseProcStat(readAll(directory + u"/stat"));
    if (!stat || stat->pid != pid)
        return std::nullopt;
    AncestorProcess process{.pid = pid,
                            .ppid = stat->ppid,
                            .name = stat->comm,
                            .arguments = {},
                            .uid = static_cast<qint64>(info.st_uid)};
    QByteArray cmdline = readAll(directory + u"/cmdline");
    if (cmdline.endsWith('\0'))
        cmdline.chop(1);
    if (!cmdline.isEmpty()) {
        for (const QByteArray& argument : cmdline.split('\0'))
            process.arguments << QString::fromLocal8Bit(argument);
    }
    return process;
}

std::optional<QString> readEnvironmentVariable(qint64 pid, QStringView name) {
    QFile file(u"/proc/" + QString::number(pid) + u"/environ");
    if (pid <= 0 || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    const QByteArray prefix = name.toLocal8Bit() + '=';
    for (const QByteArray& entry : file.readAll().split('\0')) {
        if (entry.startsWith(prefix))
            return QString::fromLocal8Bit(entry.sliced(prefix.size()));
    }
    return QString();
}

QList<AncestorProcess> ancestryOf(qint64 pid, const ProcessLookup& lookup) {
    QList<AncestorProcess> chain;
    QSet<qint64> seen;
    while (pid > 1 && chain.size() < kMaxDepth && !seen.contains(pid)) {
        seen.insert(pid);
        std::optional<AncestorProcess> process = lookup(pid);
        if (!process)
            break;
        pid = process->ppid;
        chain << std::move(*process);
    }
    return chain;
}

} // namespace brenvik
