#pragma once

#include "monitor/ProcessMonitoring.h"

#include <QString>

namespace brenvik {

// The one colour rule of the tray icon and the status header. Violet is
// "waiting for you": apart from yellow and green for red-green colour
// blindness too, and drawn with a mark of its own where it is a shape.
enum class StateColor { green, yellow, violet, red };

// Red on error, then violet while any session waits for the user, then
// yellow while any runs, green otherwise.
[[nodiscard]] StateColor stateColor(const CodexRunState& state);

// The session count ("99+" above 99), "!" on error, empty when nothing is found.
[[nodiscard]] QString badgeText(const CodexRunState& state);

// "Waiting for you: brenvik, parser" naming the projects that wait; empty
// while none does.
[[nodiscard]] QString waitingText(const CodexRunState& state);

// A session the tray menu offers to go to: "website \u00B7 Waiting for you".
struct SessionMenuItem {
    qint64 pid = 0;
    QString text;
    friend bool operator==(const SessionMenuItem&, const SessionMenuItem&) = default;
};

// The tray menu's sessions: those that wait for the user, then those that
// run, each in list order; idle ones are not offered.
[[nodiscard]] QList<SessionMenuItem> sessionMenuItems(const QList<ProcessMatch>& matches,
                                                      const QString& home = QDir::homePath());

// The session the "Waiting for you" line takes the user to: the first one
// it names. None while no session waits.
[[nodiscard]] std::optional<qint64> firstWaitingSession(const QList<ProcessMatch>& matches);

// The one line saying that no tray shows the icon and what to install, for
// the desktop named by XDG_CURRENT_DESKTOP (a colon-separated list).
[[nodiscard]] QString missingTrayText(QStringView currentDesktop);

} // namespace brenvik
