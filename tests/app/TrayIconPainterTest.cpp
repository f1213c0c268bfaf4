#include "app/TrayIconPainter.h"

#include <QIcon>
#include <QImage>
#include <cmath>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

enum class Hue { green, yellow, red, other };

const char* name(Hue hue) {
    switch (hue) {
    case Hue::green:
        return "green";
    case Hue::yellow:
        return "yellow";
    case Hue::red:
        return "red";
    case Hue::other:
        break;
    }
    return "other";
}

// What a person would call the colour.
Hue hueOf(QColor color) {
    const int h = color.hsvHue();
    if (color.hsvSaturation() < 120 || color.value() < 100)
        return Hue::other;
    if (h >= 90 && h <= 160)
        return Hue::green;
    if (h >= 40 && h <= 60)
        return Hue::yellow;
    if (h <= 12 || h >= 345)
        return Hue::red;
    return Hue::other;
}

// A point on the dot above any badge text.
QColor dotPixel(const QImage& image) {
    const int size = image.width();
    return image.pixelColor(size / 2, static_cast<int>(std::lround(size * 0.16)));
}

int pixelsOfColour(const QImage& image, QColor colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == colour ? 1 : 0;
    return count;
}

TEST(TrayIconPainter, DotCarriesTheStateColourAtPanelAndLargeSizes) {
    struct Case {
        const char* name;
        CodexRunState state;
        Hue expected;
    };
    const Case cases[] = {
        {"nothing found", CodexRunState::idle(), Hue::green},
        {"one idle group", CodexRunState::observed(1, 0, 1), Hue::green},
        {"one of three running", CodexRunState::observed(3, 1, 2), Hue::yellow},
        {"over 99 running", CodexRunState::observed(120, 5, 115), Hue::yellow},
        {"detection failed", CodexRunState::error(QStringLiteral("ps failed")), Hue::red},
    };
    for (const Case& c : cases) {
        for (int size : {22, 64}) {
            const QImage image = paintTrayIcon(stateColor(c.state), badgeText(c.state), size);
            ASSERT_EQ(image.size(), QSize(size, size)) << c.name;
            EXPECT_EQ(hueOf(dotPixel(image)), c.expected)
                << c.name << " at " << size << " px: got " << name(hueOf(dotPixel(image)));
            EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << c.name << " corner is see-through";
        }
    }
}

TEST(TrayIconPainter, BadgeTextIsDrawnOnTheDotAndIdleIsTheDotAlone) {
    struct Case {
        const char* name;
        StateColor color;
        const char* badge;
        bool hasText;
    };
    const Case cases[] = {
        {"idle", StateColor::green, "", false},
        {"one", StateColor::green, "1", true},
        {"three running", StateColor::yellow, "3", true},
        {"two digits", StateColor::green, "42", true},
        {"capped", StateColor::yellow, "99+", true},
        {"error", StateColor::red, "!", true},
    };
    for (const Case& c : cases) {
        for (int size : {22, 64}) {
            const QImage image = paintTrayIcon(c.color, QString::fromUtf8(c.badge), size);
            const QColor text = trayBadgeTextColor(c.color);
            const double radius = size / 2.0;
            int inside = 0;
            int outside = 0;
            // Text pixels (exactly the text colour), and whether they stay
            // clear of the dot's rim.
            for (int y = 0; y < size; ++y) {
                for (int x = 0; x < size; ++x) {
                    if (image.pixelColor(x, y) != text)
                        continue;
                    const double dx = x + 0.5 - radius;
                    const double dy = y + 0.5 - radius;
                    (std::hypot(dx, dy) < radius - 2.0 ? inside : outside) += 1;
                }
            }
            EXPECT_EQ(inside > 0, c.hasText) << c.name << " at " << size << " px";
            EXPECT_EQ(outside, 0) << c.name << " at " << size << " px: text touches the rim";
        }
    }
}

TEST(TrayIconPainter, IconHoldsEveryPanelSizeAndItsDouble) {
    const QIcon icon = makeTrayIcon(StateColor::yellow, u"3");
    const QList<QSize> sizes = icon.availableSizes();
    for (int size : {16, 22, 24, 32, 44, 48, 64, 96, 128})
        EXPECT_TRUE(sizes.contains(QSize(size, size))) << size << " px";
    const QImage at22 = icon.pixmap(QSize(22, 22)).toImage();
    EXPECT_EQ(at22.size(), QSize(22, 22));
    EXPECT_EQ(hueOf(dotPixel(at22)), Hue::yellow);
    EXPECT_GT(pixelsOfColour(at22.convertToFormat(QImage::Format_ARGB32_Premultiplied),
                             trayBadgeTextColor(StateColor::yellow)),
              0);
}

} // namespace
} // namespace brenvik
