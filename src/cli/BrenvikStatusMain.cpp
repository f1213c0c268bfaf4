// brenvik-status: reports the Codex CLI processes once or after every refresh.

#include "cli/StatusReport.h"
#include "monitor/ProcessMonitoring.h"
#include "monitor/Translations.h"
#include "places/GoToSession.h"
#include "places/SessionPlaces.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QSocketNotifier>
#include <QStringList>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

using namespace brenvik;

constexpr int kExitDetectionFailed = 1;
constexpr int kExitUsage = 2;

struct StatusCommand {
    Q_DECLARE_TR_FUNCTIONS(StatusCommand)
};

const char kUsage[] =
    QT_TRANSLATE_NOOP("StatusCommand", R"(Usage: brenvik-status [--json] [--watch] [--verbose]
       brenvik-status --go PID|waiting|running

Shows the Codex CLI processes on this machine and whether each is running
or idle. Without --watch it waits for two refreshes (about 2 seconds, so
that CPU use is measured), prints the result and exits.

Options:
  --json        print JSON instead of text
  --watch       print one line after every refresh (every 2 seconds) until
                interrupted; with --json one JSON object per line
  --go TARGET   go to a session: raise its terminal's window and select its
                tmux pane. TARGET is a session's PID, "waiting" (the one
                waiting longest) or "running" (the one running longest)
  --verbose     log on standard error what could not be read, and why
  -h, --help    show this help and exit
  --version     show the version and exit

Exit status: 0 on success, 1 if the process table could not be read or
--go could not go there, 2 on a usage error.
)");

struct Options {
    bool json = false;
    bool watch = false;
    bool help = false;
    bool version = false;
    bool verbose = false;
    std::optional<QString> go; // a PID, "waiting" or "running"
};

struct ParsedArguments {
    Options options;
    std::optional<QString> error;
};

ParsedArguments parseArguments(int argc, char** argv) {
    ParsedArguments parsed;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == u"--json")
            parsed.options.json = true;
        else if (argument == u"--watch")
            parsed.options.watch = true;
        else if (argument == u"-h" || argument == u"--help")
            parsed.options.help = true;
        else if (argument == u"--version")
            parsed.options.version = true;
        else if (argument == u"--verbose")
            parsed.options.verbose = true;
        else if (argument == u"--go" || argument.startsWith(u"--go=")) {
            QString target = argument.mid(5);
            if (argument == u"--go") {
                if (++i >= argc)
                    return {{}, StatusCommand::tr("--go needs a PID, 'waiting' or 'running'")};
                target = QString::fromLocal8Bit(argv[i]);
            }
            bool isPID = false;
            const qint64 pid = target.toLongLong(&isPID);
            if (!(isPID && pid > 0) && target != u"waiting" && target != u"running")
                return {{},
                        StatusCommand::tr("--go takes a PID, 'waiting' or 'running', not '%1'")
                            .arg(target)};
            parsed.options.go = target;
        } else if (argument.startsWith(u'-'))
            return {{}, StatusCommand::tr("unknown option '%1'").arg(argument)};
        else
            return {{}, StatusCommand::tr("unexpected argument '%1'").arg(argument)};
    }
    if (parsed.options.go && (parsed.options.json || parsed.options.watch))
        return {{}, StatusCommand::tr("--go takes neither --json nor --watch")};
    return parsed;
}

// Whether all of the text reached the stream; errno tells why not.
bool write(std::FILE* stream, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    errno = 0;
    const bool written = std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()),
                                     stream) == static_cast<size_t>(bytes.size());
    return std::fflush(stream) == 0 && written;
}

// The session --go names: by PID, or of those in a state the one that has
// held it longest.
std::optional<ProcessMatch> targetOf(const QList<ProcessMatch>& matches, const QString& target) {
    bool isPID = false;
    const qint64 pid = target.toLongLong(&isPID);
    const ProcessActivityStatus status =
        target == u"waiting" ? ProcessActivityStatus::waiting : ProcessActivityStatus::running;
    std::optional<ProcessMatch> chosen;
    for (const ProcessMatch& match : matches) {
        if (isPID ? match.pid != pid : match.status != status)
            continue;
        const QDateTime since = match.since.value_or(QDateTime());
        if (!chosen || (since.isValid() && (!chosen->since || since < *chosen->since)))
            chosen = match;
    }
    return chosen;
}

// Goes to the session --go names: 0 when it went (a line on standard output
// where only its tmux pane could be selected), 1 with the reason otherwise.
int goTo(const QList<ProcessMatch>& matches, const QString& target) {
    const std::optional<ProcessMatch> match = targetOf(matches, target);
    if (!match) {
        const QString none = target == u"waiting" ? StatusCommand::tr("no Codex session waits")
                             : target == u"running"
                                 ? StatusCommand::tr("no Codex session runs")
                                 : StatusCommand::tr("no Codex session has PID %1").arg(target);
        write(stderr, u"brenvik-status: " + none + u'\n');
        return kExitDetectionFailed;
    }
    const GoResult result = goToSession({match->pid, match->cwd}, PlaceEnvironment::system());
    switch (result.outcome) {
    case GoResult::Outcome::went:
        return 0;
    case GoResult::Outcome::selected:
        return write(stdout, result.text + u'\n') || errno == EPIPE ? 0 : kExitDetectionFailed;
    case GoResult::Outcome::failed:
        break;
    }
    write(stderr, u"brenvik-status: " + result.text + u'\n');
    return kExitDetectionFailed;
}

// Writes a report to standard output, or ends the program: quietly with 0
// when the reader went away (a closed pipe), with 1 and the reason otherwise
// (a full disk), so that neither a script nor --watch goes on unheard.
bool report(const QString& text) {
    if (write(stdout, text))
        return true;
    const int error = errno;
    if (error != EPIPE) {
        write(stderr, u"brenvik-status: " +
                          StatusCommand::tr("cannot write the report: %1")
                              .arg(QString::fromLocal8Bit(std::strerror(error))) +
                          u'\n');
    }
    QCoreApplication::exit(error == EPIPE ? 0 : kExitDetectionFailed);
    return false;
}

// The columns of the terminal standard output goes to; none for a file or
// a pipe, which get whole lines.
std::optional<qsizetype> terminalWidth() {
    winsize size{};
    if (::isatty(STDOUT_FILENO) && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 &&
        size.ws_col > 0)
        return size.ws_col;
    return std::nullopt;
}

// SIGINT, SIGTERM and SIGHUP as readable events instead of deaths, so that
// --watch ends cleanly. The signals are blocked before any thread exists (so
// every thread inherits the mask) and read from a signalfd on the event loop:
// no handler and no global state.
class TerminationSignals {
public:
    TerminationSignals() {
        sigset_t blocked;
        sigemptyset(&blocked);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&blocked, signal);
        pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
        m_fd = signalfd(-1, &blocked, SFD_CLOEXEC | SFD_NONBLOCK);
    }
    ~TerminationSignals() {
        if (m_fd >= 0)
            close(m_fd);
    }
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    [[nodiscard]] int fd() const noexcept { return m_fd; }

    // Takes the pending signals off the descriptor.
    void drain() const {
        signalfd_siginfo info;
        while (read(m_fd, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        }
    }

private:
    int m_fd = -1;
};

} // namespace

int main(int argc, char** argv) {
    // A closed pipe is an error to handle, not a signal to die of.
    std::signal(SIGPIPE, SIG_IGN);
    ParsedArguments parsed = parseArguments(argc, argv);
    if (parsed.error || parsed.options.help || parsed.options.version) {
        // The monitor's application object comes after the signals are
        // blocked; one of its own translates the help and the errors.
        QCoreApplication core(argc, argv);
        installTranslations();
        parsed = parseArguments(argc, argv);
        const QString usage = StatusCommand::tr(kUsage);
        if (parsed.error) {
            write(stderr, u"brenvik-status: " + *parsed.error + u"\n\n" + usage);
            return kExitUsage;
        }
        const QString text =
            parsed.options.help ? usage : QStringLiteral("brenvik-status " BRENVIK_VERSION "\n");
        return write(stdout, text) || errno == EPIPE ? 0 : kExitDetectionFailed;
    }
    const Options& options = parsed.options;
    if (options.verbose)
        QLoggingCategory::setFilterRules(QStringLiteral("brenvik.*.debug=true"));

    std::optional<TerminationSignals> terminationSignals;
    if (options.watch)
        terminationSignals.emplace();

    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brenvik-status"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRENVIK_VERSION));
    // JSON is for programs: its texts ("summary", "detail") stay English.
    if (!options.json)
        installTranslations();
    std::optional<QSocketNotifier> terminationNotifier;
    if (terminationSignals && terminationSignals->fd() >= 0) {
        terminationNotifier.emplace(terminationSignals->fd(), QSocketNotifier::Read);
        QObject::connect(&*terminationNotifier, &QSocketNotifier::activated, &app, [&] {
            terminationSignals->drain();
            QCoreApplication::exit(0);
        });
    }

    CodexProcessMonitor monitor;
    // Only JSON shows places; each is looked up once, when its session appears.
    std::optional<SessionPlaces> places;
    if (options.json)
        places.emplace();
    int refreshesEnded = 0;
    bool goesToPID = false;
    if (options.go)
        (void)options.go->toLongLong(&goesToPID);
    // Queued: the monitor stores the new value only after the notice.
    QObject::connect(
        &monitor, &CodexProcessMonitor::lastUpdatedChanged, &app,
        [&] {
            if (places)
                places->update(monitor.matches());
            const StatusReport report = StatusReport::of(monitor, places ? &*places : nullptr);
            if (options.watch) {
                (void)::report((options.json ? statusJson(report) : statusLine(report)) + u'\n');
                return;
            }
            // The first refresh sees every process for the first time; the
            // second one measures their CPU use since then. Going to a PID
            // needs no verdict, and a key binding no wait.
            if (++refreshesEnded < (goesToPID ? 1 : 2))
                return;
            if (options.json && !::report(statusJson(report) + u'\n'))
                return;
            if (report.state.asError()) {
                write(stderr, u"brenvik-status: " + statusLine(report) + u'\n');
                QCoreApplication::exit(kExitDetectionFailed);
                return;
            }
            if (options.go) {
                QCoreApplication::exit(goTo(report.matches, *options.go));
                return;
            }
            if (!options.json && !::report(statusText(report, terminalWidth())))
                return;
            QCoreApplication::exit(0);
        },
        Qt::QueuedConnection);
    monitor.start();
    return QCoreApplication::exec();
}
