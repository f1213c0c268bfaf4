#include "detection/ProcProcessTable.h"

#include "detection/CodexRecognition.h"
#include "detection/FileDescriptor.h"

#include <QCoreApplication>
#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace brenvik {

namespace {

struct DetectionText {
    Q_DECLARE_TR_FUNCTIONS(DetectionText)
};

// One stat line, its name viewing the buffer it was read into.
using StatFields = BasicProcStat<QByteArrayView>;

template <typename Integer> bool parseWhole(QByteArrayView text, Integer& value) {
    if (text.isEmpty())
        return false;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

bool isStatSpace(char c) {
    return c == ' ' || c == '\n';
}

std::optional<StatFields> parseStatFields(QByteArrayView contents) {
    const std::string_view text(contents.data(), size_t(contents.size()));
    const auto open = qsizetype(text.find('('));
    const auto close = qsizetype(text.rfind(')'));
    if (open < 0 || close < 0 || close < open)
        return std::nullopt;

    StatFields fields;
    if (!parseWhole(contents.first(open).trimmed(), fields.pid))
        return std::nullopt;
    fields.comm = contents.sliced(open + 1, close - open - 1);

    // The fields this reader uses, by their numbers in proc(5). Field 2, the
    // name, may hold anything: the others are counted from its last ")".
    enum : int { kState = 3, kPpid = 4, kFlags = 9, kUtime = 14, kStime = 15, kStartTime = 22 };
    std::array<QByteArrayView, kStartTime + 1> field;
    const QByteArrayView rest = contents.sliced(close + 1);
    qsizetype at = 0;
    for (int number = kState; number <= kStartTime; ++number) {
        while (at < rest.size() && isStatSpace(rest[at]))
            ++at;
        const qsizetype begin = at;
        while (at < rest.size() && !isStatSpace(rest[at]))
            ++at;
        field[number] = rest.sliced(begin, at - begin);
        if (field[number].isEmpty())
            return std::nullopt;
    }
    if (field[kState].size() != 1 || !parseWhole(field[kPpid], fields.ppid) ||
        !parseWhole(field[kFlags], fields.flags) || !parseWhole(field[kUtime], fields.utimeTicks) ||
        !parseWhole(field[kStime], fields.stimeTicks) ||
        !parseWhole(field[kStartTime], fields.startTimeTicks))
        return std::nullopt;
    fields.state = field[kState][0];
    return fields;
}

// Reads a small file below an open directory; -1 when it cannot be read
// (typically because the process just exited).
qsizetype readSmallFile(int directory, const char* name, char* buffer, qsizetype size) {
    const FileDescriptor fd(::openat(directory, name, O_RDONLY | O_CLOEXEC));
    if (!fd.isValid())
        return -1;
    qsizetype length = 0;
    while (length < size) {
        const ssize_t n = ::read(fd.get(), buffer + length, size_t(size - length));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return -1;
        length += n;
        // /proc makes these files whole on the first read: a short read is
        // the end, and asking again would only cost a call that returns 0.
        if (n == 0 || n < size - (length - n))
            break;
    }
    return length;
}

// A process's stat, through its path: most processes read need nothing
// else, and opening their directory would double the calls. Its name views
// `buffer`.
template <std::size_t N>
std::optional<StatFields> readStat(int proc, const char* pid, char (&buffer)[N]) {
    char path[32];
    if (std::snprintf(path, sizeof path, "%s/stat", pid) >= int(sizeof path))
        return std::nullopt;
    const qsizetype length = readSmallFile(proc, path, buffer, qsizetype(N));
    if (length <= 0)
        return std::nullopt;
    return parseStatFields(QByteArrayView(buffer, length));
}

bool isNumericName(const char* name) {
    if (*name == '\0')
        return false;
    for (; *name != '\0'; ++name) {
        if (*name < '0' || *name > '9')
            return false;
    }
    return true;
}

// The target of a symbolic link below an open directory (exe, cwd), or an
// empty text when it cannot be read (another user's process, or gone).
QString readLink(int directory, const char* name) {
    char buffer[4096];
    const ssize_t length = ::readlinkat(directory, name, buffer, sizeof buffer);
    if (length <= 0 || size_t(length) == sizeof buffer)
        return {};
    return QString::fromUtf8(buffer, length);
}

// The boot time in seconds since the epoch: the "btime" line of the stat file.
std::optional<qint64> readBootTime(const QString& procRoot) {
    QFile stat(procRoot + QStringLiteral("/stat"));
    if (!stat.open(QIODevice::ReadOnly))
        return std::nullopt;
    for (QByteArray line = stat.readLine(); !line.isEmpty(); line = stat.readLine()) {
        if (line.startsWith("btime ")) {
            qint64 seconds = 0;
            if (parseWhole(QByteArrayView(line).sliced(6).trimmed(), seconds))
                return seconds;
            break;
        }
    }
    return std::nullopt;
}

// comm is cut to 15 bytes: "codex-x86_64-un" still starts as Codex's names do.
bool commLooksLikeCodex(QByteArrayView comm) {
    return comm.startsWith("codex") || comm == "apply_patch";
}

struct DirectoryCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

} // namespace

std::optional<ProcStat> parseProcStat(QByteArrayView contents) {
    const auto fields = parseStatFields(contents);
    if (!fields)
        return std::nullopt;
    return ProcStat{.pid = fields->pid,
                    .comm = QString::fromUtf8(fields->comm),
                    .state = fields->state,
                    .ppid = fields->ppid,
                    .utimeTicks = fields->utimeTicks,
                    .stimeTicks = fields->stimeTicks,
                    .startTimeTicks = fields->startTimeTicks,
                    .flags = fields->flags};
}

ProcProcessTableSource::ProcProcessTableSource(QString procRoot, SteadyClock clock)
    : m_procRoot(std::move(procRoot))
    , m_clock(std::move(clock)) {
    if (const long ticks = ::sysconf(_SC_CLK_TCK); ticks > 0)
        m_ticksPerSecond = double(ticks);
    m_bootTimeSeconds = readBootTime(m_procRoot);
}

bool ProcProcessTableSource::learn(Known& known, int pidDirectory, qint64 ppid, QByteArrayView comm,
                                   quint64 startTimeTicks, QString command) {
    ObservedProcess& row = known.row;
    row.command = std::move(command);
    // Kept with the process: recognition reads it lower-cased, and only a
    // line that mentions Codex is worth lowering.
    const bool mentionsCodex = mayMentionCodex(row.command);
    row.loweredCommand = mentionsCodex ? lowerCasedCommand(row.command) : QString();
    known.comm = comm.toByteArray();
    row.executable.clear();
    row.cwd.clear();
    row.startedAt.reset();
    const auto parent = m_known.constFind(ppid);
    const bool parentIsCodex = parent != m_known.cend() && parent->isCodex;
    const bool mayBeCodex = mentionsCodex && codexRole(row.loweredCommand) != CodexRole::none;
    known.isCodex = mayBeCodex;
    if (!mayBeCodex && !parentIsCodex && !commLooksLikeCodex(comm))
        return false;
    readDetails(known, pidDirectory, startTimeTicks);
    return true;
}

void ProcProcessTableSource::readDetails(Known& known, int pidDirectory, quint64 startTimeTicks) {
    known.row.executable = readLink(pidDirectory, "exe");
    known.row.cwd = readLink(pidDirectory, "cwd");
    known.isCodex = known.isCodex || isCodexExecutable(known.row.executable);
    known.row.startedAt = startTimeOf(startTimeTicks);
}

std::optional<QDateTime> ProcProcessTableSource::startTimeOf(quint64 startTimeTicks) const {
    if (!m_bootTimeSeconds)
        return std::nullopt;
    const auto sinceBoot = qint64(double(startTimeTicks) * 1000.0 / m_ticksPerSecond);
    return QDateTime::fromMSecsSinceEpoch(*m_bootTimeSeconds * 1000 + sinceBoot, Qt::UTC);
}

void ProcProcessTableSource::setProcessesOfInterest(QSet<qint64> pids) {
    m_ofInterest = std::move(pids);
}

const QString& ProcProcessTableSource::stateText(char state) {
    QString& text = m_stateTexts[static_cast<unsigned char>(state)];
    if (text.isEmpty())
        text = QString(QLatin1Char(state));
    return text;
}

std::optional<ProcProcessTableSource::CommandLine>
ProcProcessTableSource::readCommandLine(int pidDirectory, bool wantArguments) {
    const FileDescriptor fd(::openat(pidDirectory, "cmdline", O_RDONLY | O_CLOEXEC));
    if (!fd.isValid())
        return std::nullopt;
    if (m_cmdlineBuffer.size() < 4096)
        m_cmdlineBuffer.resize(4096);
    qsizetype length = 0;
    for (;;) {
        if (length == m_cmdlineBuffer.size())
            m_cmdlineBuffer.resize(m_cmdlineBuffer.size() * 2);
        const ssize_t n = ::read(fd.get(), m_cmdlineBuffer.data() + length,
                                 size_t(m_cmdlineBuffer.size() - length));
        if (n > 0)
            length += n;
        else if (n == 0)
            break;
        else if (errno != EINTR)
            return std::nullopt;
    }

    char* const data = m_cmdlineBuffer.data();
    while (length > 0 && data[length - 1] == '\0')
        --length;
    CommandLine line;
    // The words of a Codex command line as they were given: a prompt such as
    // "help me" is one argument, not the subcommand "help".
    if (wantArguments || QByteArray(data, length).toLower().contains("codex")) {
        for (qsizetype begin = 0; begin <= length;) {
            qsizetype end = begin;
            while (end < length && data[end] != '\0')
                ++end;
            line.arguments.append(QString::fromUtf8(data + begin, end - begin));
            begin = end + 1;
        }
    }
    // As ps prints arguments: separators and line breaks become blanks, other
    // control characters "?", so that both sources give the same text.
    for (char* c = data; c != data + length; ++c) {
        if (*c == '\0' || *c == '\n')
            *c = ' ';
        else if ((*c > 0 && *c < 0x20) || *c == 0x7f)
            *c = '?';
    }
    line.text = QString::fromUtf8(data, length).trimmed();
    return line;
}

QList<ObservedProcess> ProcProcessTableSource::snapshot() {
    const auto now = m_clock();
    const QByteArray rootPath = QFile::encodeName(m_procRoot);
    FileDescriptor rootFd(::open(rootPath.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Only the table itself failing to open is an error of the snapshot.
    const auto cannotRead = [this](int error) {
        return ProcessSnapshotError(
            kProcessMonitorErrorDomain, error,
            DetectionText::tr("Cannot read %1: %2").arg(m_procRoot, qt_error_string(error)));
    };
    if (!rootFd.isValid())
        throw cannotRead(errno);
    const std::unique_ptr<DIR, DirectoryCloser> dir(::fdopendir(rootFd.get()));
    if (!dir)
        throw cannotRead(errno);
    (void)rootFd.release(); // the directory stream owns it now

    const double interval =
        m_previousAt ? std::chrono::duration<double>(now - *m_previousAt).count() : 0.0;
    m_previousAt = now;
    const quint64 generation = m_reRead.nextGeneration();

    QList<ObservedProcess> rows;
    rows.reserve(m_previousCount + 32);
    QList<qsizetype> undecided; // rows whose parent was not read yet
    char statBuffer[4096];
    for (;;) {
        errno = 0; // readdir tells the end from a failure only by errno
        const dirent* entry = ::readdir(dir.get());
        if (!entry) {
            if (errno != 0)
                throw cannotRead(errno);
            break;
        }
        if (!isNumericName(entry->d_name))
            continue;
        if (const auto seen = m_known.find(std::strtoll(entry->d_name, nullptr, 10));
            seen != m_known.end() && m_reRead.seenLastTime(seen->generation) &&
            m_reRead.keepsRow(seen.key(), seen->isKernelThread,
                              m_ofInterest.contains(seen.key()))) {
            seen->generation = generation;
            rows.append(seen->row);
            continue;
        }
        const auto stat = readStat(::dirfd(dir.get()), entry->d_name, statBuffer);
        if (!stat)
            continue;

        Known& known = m_known[stat->pid];
        // Seen in the previous snapshot as the same process (a PID may be reused).
        const bool continuing =
            m_reRead.seenLastTime(known.generation) && known.startTimeTicks == stat->startTimeTicks;
        const bool zombie = stat->state == 'Z';
        if (zombie) {
            // It ran its course: nothing it was may be counted any more.
            const double cpuTime = known.row.cpuTime;
            known = Known{.startTimeTicks = stat->startTimeTicks,
                          .comm = stat->comm.toByteArray(),
                          .generation = known.generation};
            known.row.cpuTime = cpuTime;
            known.row.command =
                u'[' + QString::fromUtf8(stat->comm) + QStringLiteral("] <defunct>");
        } else if (ReReadPolicy::readsCommandLine(continuing, known.comm != stat->comm,
                                                  known.commandIsFinal)) {
            const FileDescriptor pidDir(
                ::openat(::dirfd(dir.get()), entry->d_name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            if (!pidDir.isValid())
                continue;
            auto commandLine = readCommandLine(pidDir.get(), commLooksLikeCodex(stat->comm));
            if (!commandLine)
                continue; // vanished mid-read; pruned below unless seen before
            const auto parent = m_known.constFind(stat->ppid);
            known.commandIsFinal =
                ReReadPolicy::isFinal(commandLine->text.isEmpty(), stat->isKernelThread(),
                                      parent != m_known.cend() && parent->isCodex &&
                                          parent->row.command == commandLine->text);
            known.row.arguments = std::move(commandLine->arguments);
            if (commandLine->text.isEmpty())
                commandLine->text = u'[' + QString::fromUtf8(stat->comm) + u']';
            const bool detailed = learn(known, pidDir.get(), stat->ppid, stat->comm,
                                        stat->startTimeTicks, std::move(commandLine->text));
            // A parent listed after its child (PIDs wrap) is judged below.
            if (!detailed && m_known.value(stat->ppid).generation != generation)
                undecided.append(rows.size());
        }
        const double cpuTime = double(stat->utimeTicks + stat->stimeTicks) / m_ticksPerSecond;
        // Over the time since this process was last read, which a rotation
        // may have made longer than one interval.
        const double sinceRead = std::chrono::duration<double>(now - known.readAt).count();
        const double cpuPercent =
            continuing && interval > 0 && sinceRead > 0
                ? std::max(0.0, 100.0 * (cpuTime - known.row.cpuTime) / sinceRead)
                : 0.0;
        known.startTimeTicks = stat->startTimeTicks;
        known.generation = generation;
        known.readAt = now;
        known.isKernelThread = stat->isKernelThread();
        known.row.pid = stat->pid;
        known.row.ppid = stat->ppid;
        known.row.state = stateText(stat->state);
        known.row.cpuTime = cpuTime;
        rows.append(known.row);
        rows.last().cpuPercent = cpuPercent;
    }

    for (const qsizetype index : std::as_const(undecided)) {
        ObservedProcess& row = rows[index];
        if (!m_known.value(row.ppid).isCodex)
            continue;
        const QByteArray name = QByteArray::number(row.pid);
        const FileDescriptor pidDir(
            ::openat(::dirfd(dir.get()), name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!pidDir.isValid())
            continue;
        Known& known = m_known[row.pid];
        readDetails(known, pidDir.get(), known.startTimeTicks);
        row.executable = known.row.executable;
        row.cwd = known.row.cwd;
        row.startedAt = known.row.startedAt;
    }

    m_known.removeIf([generation](const std::pair<const qint64&, Known&>& entry) {
        return entry.second.generation != generation;
    });
    m_previousCount = rows.size();
    return rows;
}

} // namespace brenvik
