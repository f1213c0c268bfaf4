#pragma once

#include "app/LaunchAtLoginStatus.h"

#include <QString>

namespace brenvik {

// The colour a preference's status text is drawn in.
enum class StatusTextRole { secondary, orange };

struct LaunchAtLoginPresentation {
    bool switchOn = false;
    QString text;
    StatusTextRole role = StatusTextRole::secondary;

    friend bool operator==(const LaunchAtLoginPresentation&,
                           const LaunchAtLoginPresentation&) = default;
};

// Switch position, status text and its colour for any status value, also
// values outside the four named ones.
[[nodiscard]] LaunchAtLoginPresentation launchAtLoginPresentation(LaunchAtLoginStatus status);

// The explanation under "Show in Dock while running".
[[nodiscard]] QString dockVisibilityDescription(bool showDockIcon);

} // namespace brenvik
