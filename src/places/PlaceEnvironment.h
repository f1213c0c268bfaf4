#pragma once

#include "places/ProcessAncestry.h"
#include "places/TerminalWindows.h"
#include "places/Tmux.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace brenvik {

// What finding and going to a place asks of the system. Tests give fakes.
struct PlaceEnvironment {
    ProcessLookup process;
    TmuxRunner tmux;
    // The top-level windows; none, with the reason, where none can be asked for.
    std::function<std::optional<QList<ClientWindow>>(QString* reason)> windows;
    // Raises a window (X11Desktop::activate).
    std::function<bool(quint32 window, QString* reason)> activate;
    // A variable of a process's environment: none when unreadable, empty when unset.
    std::function<std::optional<QString>(qint64 pid, QStringView name)> variableOf;
    qint64 uid = -1;    // who runs Brenvik: only their sessions get a place
    QString tmuxTmpDir; // $TMUX_TMPDIR, for a server whose own cannot be read
    // The server whose client runs this program ($TMUX, as a key binding's
    // run-shell sets it); empty outside tmux.
    QString invokingTmuxSocket;

    // /proc, the tmux program, the X server of $DISPLAY.
    [[nodiscard]] static PlaceEnvironment system();
};

} // namespace brenvik
