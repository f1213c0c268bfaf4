#pragma once

#include "places/PlaceEnvironment.h"
#include "places/SessionPlace.h"

#include <QList>
#include <QString>
#include <optional>

namespace brenvik {

// The session to find: its root and its project directory.
struct SessionQuery {
    qint64 pid = 0;
    QString cwd;
};

// Everything a lookup learnt; going there needs more than the place.
struct LocatedSession {
    PlaceLookup lookup;
    std::optional<TmuxServer> server;
    QList<TmuxClientRow> clients;        // of that server
    std::optional<TmuxClientRow> client; // the latest to show the pane's session
    QString windowsReason;               // why no window was looked for
};

// Where the session runs: the tmux pane its root descends from (asked of
// that server), and the top-level window of the nearest ancestor that owns
// one (for a session in tmux, of the terminal whose client shows it). Runs
// tmux and asks the X server: call it when a session appears or when the
// user asks to go there, never at a refresh.
[[nodiscard]] LocatedSession locateSession(const SessionQuery& query,
                                           const PlaceEnvironment& environment);

[[nodiscard]] inline PlaceLookup findSessionPlace(const SessionQuery& query,
                                                  const PlaceEnvironment& environment) {
    return locateSession(query, environment).lookup;
}

// The window, the program that owns it, and whether that was a guess, for
// the nearest of `ancestry` that owns one.
struct OwnedWindow {
    quint32 id = 0;
    QString terminal;
    bool guess = false;
};
[[nodiscard]] std::optional<OwnedWindow> windowOf(const QList<AncestorProcess>& ancestry,
                                                  const QList<ClientWindow>& windows,
                                                  const QStringList& hints);

} // namespace brenvik
