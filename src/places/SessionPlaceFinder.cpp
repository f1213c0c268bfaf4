#include "places/SessionPlaceFinder.h"

#include "places/TerminalNames.h"

#include <QCoreApplication>

namespace brenvik {

namespace {

struct PlaceText {
    Q_DECLARE_TR_FUNCTIONS(PlaceText)
};

} // namespace

std::optional<OwnedWindow> windowOf(const QList<AncestorProcess>& ancestry,
                                    const QList<ClientWindow>& windows, const QStringList& hints) {
    for (const AncestorProcess& process : ancestry) {
        if (const std::optional<WindowChoice> choice = chooseWindow(windows, process.pid, hints)) {
            const QString known = terminalName(process);
            return OwnedWindow{choice->id, known.isEmpty() ? process.programName() : known,
                               choice->guess};
        }
    }
    return std::nullopt;
}

LocatedSession locateSession(const SessionQuery& query, const PlaceEnvironment& environment) {
    LocatedSession located;
    const QList<AncestorProcess> ancestry = ancestryOf(query.pid, environment.process);
    if (ancestry.isEmpty()) {
        located.lookup.reason = PlaceText::tr("the session has ended");
        return located;
    }
    if (ancestry.first().uid != environment.uid) {
        located.lookup.reason = PlaceText::tr("the session belongs to another user");
        return located;
    }

    SessionPlace place;
    // Where to look for the terminal: above the session itself, or for a
    // session in tmux, above the client that shows it.
    QList<AncestorProcess> terminalSide = ancestry;
    for (const AncestorProcess& process : ancestry.sliced(1)) {
        if (!isTmux(process))
            continue;
        if (process.uid != environment.uid)
            break;
        // The server's own TMUX_TMPDIR places its socket, not ours.
        const std::optional<QString> tmpDir =
            environment.variableOf ? environment.variableOf(process.pid, u"TMUX_TMPDIR")
                                   : std::nullopt;
        located.server.emplace(tmuxSocketOf(process.arguments, environment.uid,
                                            tmpDir.value_or(environment.tmuxTmpDir)),
                               environment.tmux);
        place.tmux = located.server->paneOf(ancestry);
        if (place.tmux) {
            located.clients = located.server->clients();
            located.client = latestClientOf(located.clients, place.tmux->sessionId);
        }
        terminalSide = located.client ? ancestryOf(located.client->pid, environment.process)
                                      : QList<AncestorProcess>();
        break;
    }

    const QStringList hints{query.cwd.section(u'/', -1),
                            place.tmux ? place.tmux->session : QString()};
    const std::optional<QList<ClientWindow>> windows =
        environment.windows ? environment.windows(&located.windowsReason) : std::nullopt;
    if (windows) {
        if (const std::optional<OwnedWindow> owned = windowOf(terminalSide, *windows, hints)) {
            place.window = owned->id;
            place.terminal = owned->terminal;
            place.guess = owned->guess;
        }
    }
    for (qsizetype i = 0; place.terminal.isEmpty() && i < terminalSide.size(); ++i)
        place.terminal = terminalName(terminalSide[i]);

    if (place.isEmpty()) {
        located.lookup.reason =
            located.server ? PlaceText::tr("the tmux server at %1 names no pane of it")
                                 .arg(located.server->socket())
                           : PlaceText::tr("it runs in no tmux pane and no known terminal");
        if (!located.windowsReason.isEmpty())
            located.lookup.reason = PlaceText::tr("%1; no window was looked for: %2")
                                        .arg(located.lookup.reason, located.windowsReason);
        return located;
    }
    located.lookup.place = std::move(place);
    return located;
}

} // namespace brenvik
