#include "app/TrayIconPainter.h"

#include <QImage>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace brenvik {
namespace {

// What a person would call the colour.
const char* hueOf(QColor color) {
    const int h = color.hsvHue();
    if (color.hsvSaturation() < 120 || color.value() < 100)
        return "other";
    if (h >= 90 && h <= 160)
        return "green";
    if (h >= 40 && h <= 60)
        return "yellow";
    if (h >= 250 && h <= 290)
        return "violet";
    return h <= 12 || h >= 345 ? "red" : "other";
}

// The colour most of the icon's opaque pixels are, as a person would name it.
std::string dominantHue(const QImage& image) {
    std::map<std::string, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (pixel.alpha() == 255)
                ++counts[hueOf(pixel)];
        }
    }
    counts.erase("other");
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](auto& a, auto& b) { return a.second < b.second; });
    return most == counts.end() ? "other" : most->first;
}

// A point near the bottom-left corner, outside a round dot: the waiting
// bubble's tail, which tells it apart without colour.
QColor tailPixel(const QImage& image) {
    const int size = image.width();
    return image.pixelColor(static_cast<int>(std::lround(size * 0.1)),
                            static_cast<int>(std::lround(size * 0.9)));
}

// Every state at a panel's size and a large one: the dot in the state colour,
// the waiting bubble's tail, and the badge drawn on the dot, clear of its rim.
TEST(TrayIconPainter, DotCarriesTheStateColourItsBadgeAndWaitingItsTail) {
    const std::tuple<const char*, CodexRunState, const char*> cases[] = {
        {"nothing found", CodexRunState::idle(), "green"},
        {"one idle group", CodexRunState::observed(1, 0, 1), "green"},
        {"one of three running", CodexRunState::observed(3, 1, 2), "yellow"},
        {"over 99 running", CodexRunState::observed(120, 5, 115), "yellow"},
        {"one of three waiting", CodexRunState::observed(3, 1, 1, 1, {QStringLiteral("a")}),
         "violet"},
        {"detection failed", CodexRunState::error(QStringLiteral("ps failed")), "red"},
    };
    for (const auto& [name, state, hue] : cases) {
        const QString badge = badgeText(state);
        for (int size : {22, 64}) {
            SCOPED_TRACE(std::string(name) + " at " + std::to_string(size) + " px");
            const QImage image = paintTrayIcon(stateColor(state), badge, size);
            ASSERT_EQ(image.size(), QSize(size, size));
            EXPECT_EQ(dominantHue(image), hue);
            EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "corner not see-through";
            const bool waiting = std::string_view(hue) == "violet";
            EXPECT_EQ(tailPixel(image).alpha() > 160, waiting) << "tail";

            // Text pixels (exactly the text colour), and whether they stay
            // clear of the dot's rim.
            const QColor text = trayBadgeTextColor(stateColor(state));
            const double radius = size / 2.0;
            int inside = 0;
            int outside = 0;
            for (int y = 0; y < size; ++y) {
                for (int x = 0; x < size; ++x) {
                    if (image.pixelColor(x, y) == text)
                        ++(std::hypot(x + 0.5 - radius, y + 0.5 - radius) < radius - 2.0 ? inside
                                                                                         : outside);
                }
            }
            EXPECT_EQ(inside > 0, !badge.isEmpty()) << "badge '" << badge.toStdString() << "'";
            EXPECT_EQ(outside, 0) << "badge '" << badge.toStdString() << "' touches the rim";
        }
    }
}

} // namespace
} // namespace brenvik
