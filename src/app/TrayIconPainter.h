#pragma once

#include "views/StatusPresentation.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QStringView>
#include <array>

namespace brenvik {

// Pixel sizes the tray icon is rendered at: what panels ask for, and their
// doubles for HiDPI panels (16, 22, 24, 32, 48 and 64 at 2x are 32, 44, 48,
// 64, 96 and 128).
inline constexpr std::array<int, 9> trayIconPixelSizes{16, 22, 24, 32, 44, 48, 64, 96, 128};

// The dot's colour for a state.
[[nodiscard]] QColor trayDotColor(StateColor color);

// The colour of the count drawn on the dot, chosen for contrast with it.
[[nodiscard]] QColor trayBadgeTextColor(StateColor color);

// One square image `pixels` wide: the dot (a speech bubble while a session
// waits), with `badge` centred on its face in bold. An empty badge leaves the
// dot alone.
[[nodiscard]] QImage paintTrayIcon(StateColor color, QStringView badge, int pixels);

// The icon at every size in trayIconPixelSizes.
[[nodiscard]] QIcon makeTrayIcon(StateColor color, QStringView badge);

} // namespace brenvik
