#pragma once

#include "monitor/ProcessMonitoring.h"

#include <QString>

namespace brenvik {

// The one colour rule of the tray icon and the status header.
enum class StateColor { green, yellow, red };

// Red on error, yellow while any group runs, green otherwise.
[[nodiscard]] StateColor stateColor(const CodexRunState& state);

// The group count ("99+" above 99), "!" on error, empty when nothing is found.
[[nodiscard]] QString badgeText(const CodexRunState& state);

} // namespace brenvik
