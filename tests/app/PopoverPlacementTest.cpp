#include "app/PopoverPlacement.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

TEST(PopoverPlacement, NextToTheIconAndFullyInsideTheScreen) {
    const QRect screen(0, 24, 1280, 776); // a top panel of 24 px is not usable
    const QSize popover(320, 120);
    const std::tuple<const char*, QRect, QRect, QPoint> cases[] = {
        {"icon mid-way in a top panel: below, centred", QRect(600, 2, 22, 22), screen,
         QPoint(450, 24 + popoverGap)},
        {"icon at the top-right corner: pulled left", QRect(1256, 2, 22, 22), screen,
         QPoint(1280 - 320, 24 + popoverGap)},
        {"icon at the bottom-left: above, pulled right", QRect(2, 776, 22, 22),
         QRect(0, 0, 1280, 776), QPoint(0, 776 - popoverGap - 120)},
        {"cursor point in the bottom-right corner", QRect(1279, 799, 1, 1), screen,
         QPoint(1280 - 320, 799 - popoverGap - 120)},
        {"cursor point in the top-left corner", QRect(0, 0, 1, 1), screen, QPoint(0, 24)},
        {"second screen to the right", QRect(2000, 2, 22, 22), QRect(1280, 0, 1920, 1080),
         QPoint(1850, 24 + popoverGap)},
        {"screen smaller than the popover: top-left wins", QRect(10, 10, 22, 22),
         QRect(0, 0, 200, 100), QPoint(0, 0)},
    };
    for (const auto& [name, anchor, area, expected] : cases) {
        const QPoint at = popoverPosition(anchor, popover, area);
        EXPECT_EQ(at, expected) << name;
        if (area.width() >= popover.width() && area.height() >= popover.height()) {
            EXPECT_TRUE(area.contains(QRect(at, popover))) << name;
        }
    }
}

TEST(PopoverPlacement, PlacedByTheDesktopOnlyOnWayland) {
    const std::pair<const char*, Qt::WindowType> cases[] = {
        {"xcb", Qt::Popup}, {"wayland-egl", Qt::Window}, // "wayland" is the Wayland test's
    };
    for (const auto& [platform, type] : cases) {
        const Qt::WindowFlags flags = popoverWindowFlags(QString::fromLatin1(platform));
        EXPECT_EQ(flags & Qt::WindowType_Mask, type) << platform;
        EXPECT_TRUE(flags & Qt::FramelessWindowHint) << platform;
    }
}

} // namespace
} // namespace brenvik
