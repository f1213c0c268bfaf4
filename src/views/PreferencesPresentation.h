#pragma once

#include "preferences/LaunchAtLoginStatus.h"

#include <QString>
#include <optional>

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
// values outside the four named ones; where it is not available, the reason.
[[nodiscard]] LaunchAtLoginPresentation
launchAtLoginPresentation(LaunchAtLoginStatus status,
                          const std::optional<QString>& reason = std::nullopt);

// The explanation under "Show in taskbar while running".
[[nodiscard]] QString dockVisibilityDescription(bool showDockIcon);

} // namespace brenvik
