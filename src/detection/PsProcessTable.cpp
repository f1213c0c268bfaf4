#include "detection/PsProcessTable.h"

#include "detection/FileDescriptor.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace brenvik {

namespace {

struct DetectionText {
    Q_DECLARE_TR_FUNCTIONS(DetectionText)
};

[[noreturn]] void throwLaunchError(int error) {
    throw ProcessSnapshotError(kPosixErrorDomain, error, qt_error_string(error));
}

class SpawnFileActions {
public:
    SpawnFileActions() { posix_spawn_file_actions_init(&m_actions); }
    SpawnFileActions(const SpawnFileActions&) = delete;
    SpawnFileActions& operator=(const SpawnFileActions&) = delete;
    ~SpawnFileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    posix_spawn_file_actions_t* get() { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

// Starts the executable with standard output and standard error on one pipe
// and returns its PID and the pipe's reading end.
std::pair<pid_t, int> launch(const QString& executable) {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0)
        throwLaunchError(errno);
    FileDescriptor readEnd(fds[0]);
    FileDescriptor writeEnd(fds[1]);

    SpawnFileActions actions;
    // dup2 clears close-on-exec on the copies; both originals close at exec.
    if (const int error = posix_spawn_file_actions_adddup2(actions.get(), writeEnd.get(), 1))
        throwLaunchError(error);
    if (const int error = posix_spawn_file_actions_adddup2(actions.get(), writeEnd.get(), 2))
        throwLaunchError(error);

    const QByteArray path = QFile::encodeName(executable);
    std::array<QByteArray, 3> arguments{
        QByteArrayLiteral("-axww"), QByteArrayLiteral("-o"),
        QByteArrayLiteral("pid=,ppid=,state=,%cpu=,time=,command=")};
    std::array<char*, 5> argv{const_cast<char*>(path.constData()), arguments[0].data(),
                              arguments[1].data(), arguments[2].data(), nullptr};
    pid_t pid = -1;
    if (const int error =
            ::posix_spawn(&pid, path.constData(), actions.get(), nullptr, argv.data(), environ))
        throwLaunchError(error);

    // Our copy of the writing end must go, or reading never sees end of file.
    writeEnd.reset();
    return {pid, readEnd.release()};
}

QByteArray readToEnd(int fd) {
    QByteArray output;
    std::array<char, 16384> buffer;
    for (;;) {
        const ssize_t n = ::read(fd, buffer.data(), buffer.size());
        if (n > 0) {
            output.append(buffer.data(), n);
        } else if (n == 0 || errno != EINTR) {
            return output;
        }
    }
}

// The exit status; a child killed by a signal reports 128 + the signal
// number, as shells do, so it is never mistaken for success.
int waitForExit(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        // Only if someone reaped it for us; its status is lost.
        if (errno != EINTR)
            return 128;
    }
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return 128;
}

} // namespace

QList<ObservedProcess> readProcessTable() {
    return readProcessTable(QStringLiteral("/bin/ps"));
}

QList<ObservedProcess> readProcessTable(const QString& executable) {
    const auto [pid, fd] = launch(executable);
    QByteArray bytes;
    int status = 0;
    {
        // Should reading fail (out of memory), the pipe closes first and the
        // child is still reaped, so no zombie is left behind.
        struct Reaper {
            pid_t pid;
            bool reaped = false;
            ~Reaper() {
                if (!reaped)
                    (void)waitForExit(pid);
            }
        } reaper{pid};
        {
            const FileDescriptor readEnd(fd);
            bytes = readToEnd(readEnd.get());
        }
        status = waitForExit(pid);
        reaper.reaped = true;
    }

    const QString text = QString::fromUtf8(bytes).trimmed();
    if (status != 0) {
        throw ProcessSnapshotError(
            kProcessMonitorErrorDomain, status,
            text.isEmpty() ? DetectionText::tr("ps failed with exit code %1").arg(status) : text);
    }

    return parseProcessListing(text);
}

QList<ObservedProcess> parseProcessListing(QStringView output) {
    QList<ObservedProcess> rows;
    rows.reserve(output.size() / 64); // a typical line's length; growing is cheap
    qsizetype begin = 0;
    while (begin < output.size()) {
        qsizetype end = output.indexOf(QChar(u'\n'), begin);
        if (end < 0)
            end = output.size();
        if (end > begin) {
            if (auto row = parseProcessLine(output.sliced(begin, end - begin)))
                rows.append(std::move(*row));
        }
        begin = end + 1;
    }
    return rows;
}

} // namespace brenvik
