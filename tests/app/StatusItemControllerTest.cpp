#include "app/StatusItemController.h"

#include "app/TrayIconPainter.h"
#include "tests/app/ShellTestSupport.h"
#include "tests/monitor/MonitorTestSupport.h"
#include "views/MenuPopoverView.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

using test::RecordingActions;
using test::RecordingSurface;

TEST(StatusItem, PushesOnlyWhatChanged) {
    struct Step {
        const char* name;
        CodexRunState state;
        int newIcons;
        int newToolTips;
    };
    const Step steps[] = {
        {"first drawing", CodexRunState::idle(), 1, 1},
        {"idle again", CodexRunState::idle(), 0, 0},
        {"one idle group", CodexRunState::observed(1, 0, 1), 1, 1},
        {"the same group again", CodexRunState::observed(1, 0, 1), 0, 0},
        {"it starts running", CodexRunState::observed(1, 1, 0), 1, 1},
        {"three, one running", CodexRunState::observed(3, 1, 2), 1, 1},
        {"three, two running: same dot and count", CodexRunState::observed(3, 2, 1), 0, 1},
        {"150 groups", CodexRunState::observed(150, 2, 148), 1, 1},
        {"151 groups: still 99+", CodexRunState::observed(151, 2, 149), 0, 1},
        {"151 groups again", CodexRunState::observed(151, 2, 149), 0, 0},
        {"detection fails", CodexRunState::error(QStringLiteral("a")), 1, 1},
        {"fails with another text", CodexRunState::error(QStringLiteral("b")), 0, 1},
        {"nothing found", CodexRunState::idle(), 1, 1},
    };
    RecordingActions actions;
    RecordingSurface surface;
    StatusItemController controller(actions, surface);
    qsizetype icons = 0;
    qsizetype toolTips = 0;
    for (const Step& step : steps) {
        controller.updateButton(step.state);
        EXPECT_EQ(surface.icons.size() - icons, step.newIcons) << step.name;
        EXPECT_EQ(surface.toolTips.size() - toolTips, step.newToolTips) << step.name;
        icons = surface.icons.size();
        toolTips = surface.toolTips.size();
        ASSERT_FALSE(surface.toolTips.isEmpty());
        EXPECT_EQ(surface.toolTips.last(), detailText(step.state)) << step.name;
        ASSERT_TRUE(controller.appearance().has_value());
        EXPECT_EQ(controller.appearance()->color, stateColor(step.state)) << step.name;
        EXPECT_EQ(controller.appearance()->badge, badgeText(step.state)) << step.name;
    }
}

class StatusItemWithMonitor : public ::testing::Test {
protected:
    // Declared before the monitor, which waits for its scan when destroyed.
    test::ScriptedScan m_scan;
    test::ManualClock m_clock;
    CodexProcessMonitor m_monitor{m_scan.function(), m_clock.function()};
    RecordingActions m_actions;
    RecordingSurface m_surface;
    StatusItemController m_controller{m_actions, m_surface};
};

TEST_F(StatusItemWithMonitor, DrawsAtOnceAndRedrawsOnTheTurnAfterEachPublish) {
    m_controller.configure(m_monitor);
    ASSERT_EQ(m_surface.toolTips, QList<QString>{QStringLiteral("No Codex CLI process detected")});
    ASSERT_EQ(m_surface.icons.size(), 1);

    m_scan.returns({test::sample(300, 50.0, 1.0, true)});
    bool sawOldStateAtPublish = false;
    QObject::connect(&m_monitor, &CodexProcessMonitor::matchesChanged, &m_monitor,
                     [&] { sawOldStateAtPublish = m_controller.appearance()->badge.isEmpty(); });
    ASSERT_TRUE(test::refreshAt(m_monitor, m_clock, 1000));
    EXPECT_TRUE(sawOldStateAtPublish) << "redrawn before the monitor stored its matches";
    QApplication::processEvents();
    EXPECT_EQ(m_controller.appearance()->color, StateColor::yellow);
    EXPECT_EQ(m_controller.appearance()->badge, QStringLiteral("1"));
    EXPECT_EQ(m_surface.toolTips.last(), QStringLiteral("1 Codex process running"));

    // Unchanged refreshes still redraw, but push nothing to the tray.
    const qsizetype icons = m_surface.icons.size();
    const qsizetype toolTips = m_surface.toolTips.size();
    for (qint64 ms : {3000, 5000, 7000}) {
        m_scan.returns({test::sample(300, 50.0, 1.0 + double(ms) / 1000.0, true)});
        ASSERT_TRUE(test::refreshAt(m_monitor, m_clock, ms));
        QApplication::processEvents();
    }
    EXPECT_EQ(m_surface.icons.size(), icons);
    EXPECT_EQ(m_surface.toolTips.size(), toolTips);

    m_scan.fails(QStringLiteral("ps failed with exit code 1"));
    ASSERT_TRUE(test::refreshAt(m_monitor, m_clock, 9000));
    QApplication::processEvents();
    EXPECT_EQ(m_controller.appearance()->color, StateColor::red);
    EXPECT_EQ(m_controller.appearance()->badge, QStringLiteral("!"));
    EXPECT_EQ(m_surface.toolTips.last(),
              QStringLiteral("Codex process detection failed: ps failed with exit code 1"));
}

TEST_F(StatusItemWithMonitor, LeftClickTogglesOnePopoverNextToTheIcon) {
    m_controller.configure(m_monitor);
    QWidget* content = m_controller.popover().content();
    ASSERT_NE(qobject_cast<MenuPopoverView*>(content), nullptr);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();

    struct Case {
        const char* name;
        QRect icon;
    };
    const Case cases[] = {
        {"icon in a top-right panel", QRect(screen.right() - 30, screen.top(), 22, 22)},
        {"icon in a bottom-left panel", QRect(screen.left() + 4, screen.bottom() - 22, 22, 22)},
    };
    for (const Case& c : cases) {
        m_surface.iconGeometry = c.icon;
        m_surface.click();
        ASSERT_TRUE(m_controller.popover().isVisible()) << c.name;
        const QRect popover = m_controller.popover().geometry();
        EXPECT_TRUE(screen.contains(popover)) << c.name;
        const int gap = popover.top() > c.icon.bottom() ? popover.top() - c.icon.bottom()
                                                        : c.icon.top() - popover.bottom();
        EXPECT_GT(gap, 0) << c.name << ": covers the icon";
        EXPECT_LE(gap, 10) << c.name << ": not next to the icon";
        EXPECT_EQ(m_controller.popover().content(), content) << c.name << ": content made anew";
        m_surface.click();
        EXPECT_FALSE(m_controller.popover().isVisible()) << c.name;
        // Let the click that closes a popup pass before the next case opens it.
        QTest::qWait(400);
    }
}

} // namespace
} // namespace brenvik
