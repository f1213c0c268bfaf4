#include "views/PreferencesPresentation.h"

#include <QCoreApplication>

namespace brenvik {

namespace {

struct PreferencesText {
    Q_DECLARE_TR_FUNCTIONS(PreferencesText)
};

} // namespace

LaunchAtLoginPresentation launchAtLoginPresentation(LaunchAtLoginStatus status,
                                                    const std::optional<QString>& reason) {
    switch (status) {
    case LaunchAtLoginStatus::notRegistered:
        return {false, PreferencesText::tr("Launch at login is off"), StatusTextRole::secondary};
    case LaunchAtLoginStatus::enabled:
        return {true, PreferencesText::tr("Launch at login is enabled"), StatusTextRole::secondary};
    case LaunchAtLoginStatus::requiresApproval:
        return {true, PreferencesText::tr("Launch at login is waiting for approval by the desktop"),
                StatusTextRole::orange};
    case LaunchAtLoginStatus::notFound:
        return {false,
                reason ? PreferencesText::tr("Launch at login is not available: %1").arg(*reason)
                       : PreferencesText::tr("Launch at login is not available"),
                StatusTextRole::secondary};
    }
    return {false, PreferencesText::tr("Launch-at-login status is unavailable"),
            StatusTextRole::secondary};
}

QString dockVisibilityDescription(bool showDockIcon) {
    return showDockIcon
               ? PreferencesText::tr("The app appears in the taskbar while running")
               : PreferencesText::tr("The app runs in the tray and stays out of the taskbar");
}

} // namespace brenvik
