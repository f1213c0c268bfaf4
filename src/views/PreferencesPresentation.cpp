#include "views/PreferencesPresentation.h"

namespace brenvik {

LaunchAtLoginPresentation launchAtLoginPresentation(LaunchAtLoginStatus status) {
    switch (status) {
    case LaunchAtLoginStatus::notRegistered:
        return {false, QStringLiteral("Launch at login is off"), StatusTextRole::secondary};
    case LaunchAtLoginStatus::enabled:
        return {true, QStringLiteral("Launch at login is enabled"), StatusTextRole::secondary};
    case LaunchAtLoginStatus::requiresApproval:
        return {true, QStringLiteral("Launch at login is waiting for approval in System Settings"),
                StatusTextRole::orange};
    case LaunchAtLoginStatus::notFound:
        return {false,
                QStringLiteral("Launch-at-login service is not available for this app bundle"),
                StatusTextRole::secondary};
    }
    return {false, QStringLiteral("Launch-at-login status is unavailable"),
            StatusTextRole::secondary};
}

QString dockVisibilityDescription(bool showDockIcon) {
    return showDockIcon ? QStringLiteral("The app appears in the Dock while running")
                        : QStringLiteral(
                              "The app runs as a menu bar utility and stays hidden from the Dock");
}

} // namespace brenvik
