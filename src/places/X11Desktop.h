#pragma once

#include "places/TerminalWindows.h"

#include <QList>
#include <QString>
#include <memory>

namespace brenvik {

// The X server's window manager, over EWMH: which top-level windows there
// are and whose, and raising one. Only opened on a lookup or a go.
class X11Desktop {
public:
    // The display of $DISPLAY; none, with the reason, where it cannot be
    // opened or no EWMH window manager runs.
    [[nodiscard]] static std::unique_ptr<X11Desktop> open(QString* reason);
    ~X11Desktop();
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;

    // _NET_CLIENT_LIST_STACKING (else _NET_CLIENT_LIST), each with its
    // _NET_WM_PID and title.
    [[nodiscard]] QList<ClientWindow> clientWindows() const;

    // Switches to the window's desktop, un-minimises it and asks for it to
    // be activated as a pager would (source indication 2, which window
    // managers honour over focus-stealing prevention).
    [[nodiscard]] bool activate(quint32 window, QString* reason) const;

private:
    struct Connection;
    explicit X11Desktop(std::unique_ptr<Connection> connection);
    std::unique_ptr<Connection> m_connection;
};

} // namespace brenvik
