#pragma once

#include "places/ProcessAncestry.h"

#include <QString>

namespace brenvik {

// The terminal or editor a process is, by the name users know it ("xterm",
// "GNOME Terminal", "Visual Studio Code"); empty for any other program.
[[nodiscard]] QString terminalName(const AncestorProcess& process);

} // namespace brenvik
