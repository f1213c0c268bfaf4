#pragma once

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
};

} // namespace brenvik
