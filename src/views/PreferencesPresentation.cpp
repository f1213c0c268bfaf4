#include "views/PreferencesPresentation.h"

namespace brenvik {

LaunchAtLoginPresentation launchAtLoginPresentation(LaunchAtLoginStatus status,
                                                    const std::optional<QString>& reason) {
    switch (status) {
    case LaunchAtLoginStatus::notRegistered:
        return {false, QStringLiteral("Launch at login is off"), StatusTextRole::secondary};
    case LaunchAtLoginStatus::enabled:
        return {true, QStringLiteral("Launch at login is enabled"), StatusTextRole::secondary};
    case LaunchAtLoginStatus::requiresApproval:
        return {true, QStringLiteral("Launch at login is waiting for approval by the desktop"),
                StatusTextRole::orange};
    case LaunchAtLoginStatus::notFound:
        return {false,
                reason ? QStringLiteral("Launch at login is not available: ") + *reason
                       : QStringLiteral("Launch at login is not available"),
                StatusTextRole::secondary};
    }
    return {false, QStringLiteral("Launch-at-login status is unavailable"),
            StatusTextRole::secondary};
}

QString dockVisibilityDescription(bool showDockIcon) {
    return showDockIcon ? QStringLiteral("The app appears in the taskbar while running")
                        : QStringLiteral("The app runs in the tray and stays out of the taskbar");
}

} // namespace brenvik
