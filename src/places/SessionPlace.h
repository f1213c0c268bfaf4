#pragma once

#include <QString>
#include <optional>

namespace brenvik {

// A tmux pane. The IDs ($1, @2, %3) stay valid while the pane lives, so
// commands aim at them rather than at names a user may pick freely.
struct TmuxPane {
    QString socket; // the server's socket, for `tmux -S`
    QString session;
    QString sessionId;
    int window = 0; // index
    QString windowId;
    QString windowName;
    int pane = 0; // index
    QString paneId;

    friend bool operator==(const TmuxPane&, const TmuxPane&) = default;
};

// Where a session runs: the terminal or editor window, its tmux pane.
struct SessionPlace {
    QString terminal;              // as users know it ("xterm", "GNOME Terminal"); empty: unknown
    std::optional<quint32> window; // the X11 top-level window
    std::optional<TmuxPane> tmux;  // the pane it runs in
    bool guess = false;            // the window is one of several its program owns

    [[nodiscard]] bool isEmpty() const { return terminal.isEmpty() && !window && !tmux; }
    friend bool operator==(const SessionPlace&, const SessionPlace&) = default;
};

// A place, or why there is none.
struct PlaceLookup {
    std::optional<SessionPlace> place;
    QString reason; // set when place is absent

    friend bool operator==(const PlaceLookup&, const PlaceLookup&) = default;
};

// "xterm, tmux work:2.1", "tmux work:2.1", "GNOME Terminal"; empty for an empty place.
[[nodiscard]] QString placeText(const SessionPlace& place);

} // namespace brenvik
