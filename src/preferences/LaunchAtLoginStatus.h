#pragma once

#include <QMetaType>

namespace brenvik {

// Registration of the autostart entry. Values outside the four named ones are
// possible and read as "unknown".
enum class LaunchAtLoginStatus : int {
    notRegistered = 0,
    enabled = 1,
    requiresApproval = 2,
    notFound = 3,
};

} // namespace brenvik
