// The tray's status item: the icon as painted, and what its controller
// pushes to the tray.
#include "../monitor/Matches.h"
#include "app/StatusItemController.h"
#include "app/TrayIconPainter.h"
#include "tests/app/ShellTestSupport.h"

#include <QApplication>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

class StatusItem : public ::testing::Test {
protected:
    test::ScriptedMonitor m_scripted;
    test::RecordingActions m_actions;
    test::RecordingSurface m_surface;
    StatusItemController m_controller{m_actions, m_surface};
};

TEST_F(StatusItem, PushesOnlyWhatChanged) {
    // Name, state, and how many new icons and tool tips reach the tray.
    const std::tuple<const char*, CodexRunState, int, int> steps[] = {
        {"first drawing", CodexRunState::idle(), 1, 1},
        {"idle again", CodexRunState::idle(), 0, 0},
        {"three, one running", CodexRunState::observed(3, 1, 2), 1, 1},
        {"three, two running: same dot and count", CodexRunState::observed(3, 2, 1), 0, 1},
        {"one waits: violet bubble", CodexRunState::observed(3, 1, 1, 1, {u"brenvik"_s}), 1, 1},
        {"another project waits instead: same icon",
         CodexRunState::observed(3, 1, 1, 1, {u"parser"_s}), 0, 1},
        {"150 groups", CodexRunState::observed(150, 2, 148), 1, 1},
        {"151 groups: still 99+", CodexRunState::observed(151, 2, 149), 0, 1},
        {"detection fails", CodexRunState::error(u"a"_s), 1, 1},
        {"nothing found", CodexRunState::idle(), 1, 1},
    };
    qsizetype icons = 0;
    qsizetype toolTips = 0;
    for (const auto& [name, state, newIcons, newToolTips] : steps) {
        m_controller.updateButton(state);
        EXPECT_EQ(m_surface.icons.size() - icons, newIcons) << name;
        EXPECT_EQ(m_surface.toolTips.size() - toolTips, newToolTips) << name;
        icons = m_surface.icons.size();
        toolTips = m_surface.toolTips.size();
        EXPECT_EQ(m_surface.toolTips.last(), detailText(state)) << name;
        EXPECT_EQ(m_controller.appearance()->color, stateColor(state)) << name;
        EXPECT_EQ(m_controller.appearance()->badge, badgeText(state)) << name;
    }
}

TEST_F(StatusItem, MenuOffersTheSessionsThatWaitOrRunWhenTheyChange) {
    using test::match;
    using enum ProcessActivityStatus;
    // Name, matches, and whether the menu's sessions are pushed anew.
    const std::tuple<const char*, QList<ProcessMatch>, bool> steps[] = {
        {"first: none", {}, true},
        {"an idle one is not offered", {match(7, idle)}, false},
        {"it runs", {match(7, running)}, true},
        {"it still runs", {match(7, running)}, false},
        {"another waits", {match(7, running), match(9, waiting)}, true},
    };
    for (const auto& [name, matches, pushed] : steps) {
        const qsizetype before = m_surface.sessionItems.size();
        m_controller.updateMenu(matches);
        EXPECT_EQ(m_surface.sessionItems.size() - before, pushed ? 1 : 0) << name;
        EXPECT_EQ(m_surface.sessionItems.last(), sessionMenuItems(matches)) << name;
    }
}

TEST_F(StatusItem, DrawsAtOnceAndRedrawsOnTheTurnAfterEachPublish) {
    CodexProcessMonitor& monitor = m_scripted.monitor;
    m_controller.configure(monitor);
    ASSERT_EQ(m_surface.toolTips.size(), 1);
    ASSERT_EQ(m_surface.icons.size(), 1);

    bool sawOldStateAtPublish = false;
    QObject::connect(&monitor, &CodexProcessMonitor::matchesChanged, &monitor,
                     [&] { sawOldStateAtPublish = m_controller.appearance()->badge.isEmpty(); });
    ASSERT_TRUE(m_scripted.refreshWith({test::sample(300, 50.0, 1.0, true)}));
    EXPECT_TRUE(sawOldStateAtPublish) << "redrawn before the monitor stored its matches";
    QApplication::processEvents();
    EXPECT_EQ(m_controller.appearance()->color, StateColor::yellow);

    // A log that names the plan's limits adds their line under the status.
    SessionLogState log;
    log.phase = TurnPhase::idle;
    log.codexHome = u"/h"_s;
    log.rateLimits = RateLimits{RateLimitWindow{42, 300, {}}, {}, {}, {}, {}};
    ASSERT_TRUE(m_scripted.refreshWith({test::sample(300, 0.0, 1.0, true)}, {log}));
    QApplication::processEvents();
    EXPECT_EQ(m_surface.toolTips.last(),
              detailText(m_scripted.monitor.runState()) + u'\n' +
                  limitsLineText(*log.rateLimits, QDateTime::currentDateTimeUtc()));
}

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
