#pragma once

#include <QtGlobal>

namespace brenvik {

// The button actions that need the application's root object. The app fills
// this in; tests record the calls, so the views stand alone.
class ViewActions {
public:
    virtual ~ViewActions() = default;
    virtual void openControlPanel() = 0;
    // Re-reads the login item status, then asks the monitor for a refresh.
    virtual void refreshNow() = 0;
    virtual void quit() = 0;
    // Takes the user to the session with this root PID: its terminal window
    // and tmux pane. Where it could not, the control panel says why.
    virtual void goToSession(qint64 pid) = 0;
};

} // namespace brenvik
