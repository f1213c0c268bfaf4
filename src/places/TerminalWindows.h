#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace brenvik {

// A top-level window as the window manager lists it.
struct ClientWindow {
    quint32 id = 0;
    qint64 pid = 0; // _NET_WM_PID; 0 when the window does not say
    QString title;
    int stackingOrder = 0; // higher: raised more recently

    friend bool operator==(const ClientWindow&, const ClientWindow&) = default;
};

struct WindowChoice {
    quint32 id = 0;
    bool guess = false; // its program owns other windows too

    friend bool operator==(const WindowChoice&, const WindowChoice&) = default;
};

// Of the windows `pid` owns: the one whose title names one of the hints (the
// project directory, the tmux session), else the most recently raised. None
// when it owns no window.
[[nodiscard]] std::optional<WindowChoice> chooseWindow(const QList<ClientWindow>& windows,
                                                       qint64 pid, const QStringList& hints);

// Why no window can be raised in this environment, from its variables
// (QT_QPA_PLATFORM, WAYLAND_DISPLAY, XDG_SESSION_TYPE, DISPLAY); empty when
// an X server may be asked.
[[nodiscard]] QString windowsUnavailableReason(const std::function<QString(const char*)>& variable);

} // namespace brenvik
