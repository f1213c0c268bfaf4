#include "places/Tmux.h"

#include "detection/FailureLog.h"
#include "places/PlacesLogging.h"

#include <QProcess>

namespace brenvik {

namespace {

// tmux answers in milliseconds; a server that hangs must not hang the caller.
constexpr int kTimeoutMs = 3000;

} // namespace

std::optional<QString> runTmux(const QStringList& arguments) {
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QStringLiteral("tmux"), arguments);
    // Each command once: asking a dead server again fails the same way.
    const auto failed = [&arguments](const QString& why) -> std::optional<QString> {
        logFailureOnce(lcPlaces(), QStringLiteral("tmux:") + arguments.join(u' '),
                       QStringLiteral("tmux %1: %2").arg(arguments.join(u' '), why));
        return std::nullopt;
    };
    if (!process.waitForStarted(kTimeoutMs))
        return failed(process.errorString());
    if (!process.waitForFinished(kTimeoutMs)) {
        process.kill();
        process.waitForFinished(kTimeoutMs);
        return failed(QStringLiteral("no answer within %1 ms").arg(kTimeoutMs));
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return failed(QString::fromUtf8(process.readAllStandardError()).trimmed());
    return QString::fromUtf8(process.readAllStandardOutput());
}

std::optional<QString> TmuxServer::run(QStringList arguments) const {
    if (m_socket.isEmpty() || !m_run)
        return std::nullopt;
    arguments.prepend(m_socket);
    arguments.prepend(QStringLiteral("-S"));
    return m_run(arguments);
}

std::optional<QString> TmuxServer::format(const QString& target, const QString& format) const {
    std::optional<QString> text = run({QStringLiteral("display-message"), QStringLiteral("-p"),
                                       QStringLiteral("-t"), target, format});
    if (text && text->endsWith(u'\n'))
        text->chop(1);
    return text;
}

std::optional<TmuxPane> TmuxServer::paneOf(const QList<AncestorProcess>& ancestry) const {
    const std::optional<QString> output =
        run({QStringLiteral("list-panes"), QStringLiteral("-a"), QStringLiteral("-F"),
             QString::fromLatin1(kTmuxPaneFormat)});
    if (!output)
        return std::nullopt;
    const std::optional<TmuxPaneRow> row = brenvik::paneOf(parseTmuxPanes(*output), ancestry);
    if (!row)
        return std::nullopt;
    // Asked one by one: a name may hold anything, even a line break.
    return TmuxPane{
        .socket = m_socket,
        .session = format(row->paneId, QStringLiteral("#{session_name}")).value_or(row->sessionId),
        .sessionId = row->sessionId,
        .window = row->window,
        .windowId = row->windowId,
        .windowName = format(row->paneId, QStringLiteral("#{window_name}")).value_or(QString()),
        .pane = row->pane,
        .paneId = row->paneId};
}

QList<TmuxClientRow> TmuxServer::clients() const {
    const std::optional<QString> output = run({QStringLiteral("list-clients"), QStringLiteral("-F"),
                                               QString::fromLatin1(kTmuxClientFormat)});
    return output ? parseTmuxClients(*output) : QList<TmuxClientRow>();
}

bool TmuxServer::select(const TmuxPane& pane) const {
    return run({QStringLiteral("select-window"), QStringLiteral("-t"), pane.windowId}) &&
           run({QStringLiteral("select-pane"), QStringLiteral("-t"), pane.paneId});
}

bool TmuxServer::switchClient(const QString& tty, const TmuxPane& pane) const {
    QStringList arguments{QStringLiteral("switch-client")};
    if (!tty.isEmpty())
        arguments << QStringLiteral("-c") << tty;
    arguments << QStringLiteral("-t") << pane.paneId;
    return run(arguments).has_value();
}

} // namespace brenvik
