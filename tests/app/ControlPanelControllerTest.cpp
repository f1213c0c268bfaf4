#include "app/ControlPanelController.h"

#include "app/ControlPanelPlacement.h"
#include "tests/app/ShellTestSupport.h"
#include "views/ControlPanelView.h"
#include "views/ProcessListSectionView.h"
#include "views/ProcessRowView.h"

#include <QApplication>
#include <QScreen>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

TEST(ControlPanelController, BuildsOneFixedSizeWindowCentredOnce) {
    test::ScriptedMonitor scripted;
    test::PrivatePreferences preferences;
    test::RecordingActions actions;
    ControlPanelController controller(scripted.monitor, preferences.launchAtLogin,
                                      preferences.appVisibility, actions);
    EXPECT_EQ(controller.window(), nullptr) << "no window before the first show";
    controller.show();
    QWidget* window = controller.window();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Brenvik"));
    EXPECT_EQ(window->minimumSize(), QSize(420, 480)) << "resizable";
    EXPECT_EQ(window->maximumSize(), QSize(420, 480)) << "resizable";
    EXPECT_NE(window->findChild<ControlPanelView*>(), nullptr);
    const QPoint centre = QGuiApplication::primaryScreen()->availableGeometry().center();
    const QRect frame(window->pos(), window->size().grownBy(controlPanelFrameEstimate));
    EXPECT_LE((frame.center() - centre).manhattanLength(), 4) << "frame centred";

    // Closing hides; later shows bring back the same window where it was left.
    const std::tuple<const char*, bool, std::optional<QPoint>> steps[] = {
        {"shown again while open", false, std::nullopt},
        {"closed, then shown", true, std::nullopt},
        {"moved, closed, then shown", true, QPoint(40, 60)},
    };
    for (const auto& [name, closeFirst, moveTo] : steps) {
        if (moveTo)
            window->move(*moveTo);
        const QPoint before = window->pos();
        if (closeFirst) {
            EXPECT_TRUE(window->close()) << name;
        }
        controller.show();
        EXPECT_EQ(controller.window(), window) << name;
        EXPECT_TRUE(window->isVisible()) << name;
        EXPECT_EQ(window->pos(), before) << name;
        EXPECT_EQ(window->size(), QSize(420, 480)) << name;
    }
    window->showMinimized();
    controller.show();
    EXPECT_FALSE(window->isMinimized()) << "restored, not only raised";
    EXPECT_EQ(QApplication::topLevelWidgets().count(window), 1);
    window->close();
}

// A 16 pt font: the panel grows until nothing in it is cut, within the screen;
// where the screen is too small for that (the same test runs at scale 2 on a
// 500 px high screen), the content scrolls.
TEST(ControlPanelController, GrowsForALargerFontWithinTheScreen) {
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSize(16);
    QApplication::setFont(large);
    {
        test::ScriptedMonitor scripted;
        test::PrivatePreferences preferences;
        test::RecordingActions actions;
        ControlPanelController controller(scripted.monitor, preferences.launchAtLogin,
                                          preferences.appVisibility, actions);
        controller.show();
        QWidget* window = controller.window();
        const auto* view = window->findChild<ControlPanelView*>();
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        EXPECT_TRUE(
            area.contains(QRect(window->pos(), window->size().grownBy(controlPanelFrameEstimate))))
            << "off the screen";
        EXPECT_GE(window->width(), 420);
        if (window->size() == view->naturalSize()) {
            EXPECT_GE(window->height(), 480);
            const ProcessRowView row(ProcessMatch{}, QDateTime());
            EXPECT_GE(view->processList()->height(), 3 * row.height()) << "three rows";
        }
        EXPECT_GE(view->height(), view->minimumHeight()) << "cut instead of scrolled";
        for (const QWidget* button : {static_cast<const QWidget*>(view->refreshButton()),
                                      static_cast<const QWidget*>(view->quitButton())})
            EXPECT_GE(button->width(), button->sizeHint().width()) << "a button cut short";
        EXPECT_GE(view->lastUpdatedLabel()->width(),
                  view->lastUpdatedLabel()->minimumSizeHint().width());
        window->close();
    }
    QApplication::setFont(before);
}

TEST(ControlPanelPlacement, NaturalSizeWhereItFitsAndTheFrameAlwaysOnScreen) {
    const QMargins frame = controlPanelFrameEstimate;
    const std::tuple<const char*, QSize, QRect, QSize> cases[] = {
        {"fits", QSize(420, 480), QRect(0, 0, 1280, 800), QSize(420, 480)},
        {"below a top panel", QSize(420, 480), QRect(0, 32, 1024, 668), QSize(420, 480)},
        {"16 pt at scale 2, 500 px high", QSize(420, 518), QRect(0, 0, 1000, 500), QSize(420, 448)},
        {"second screen", QSize(420, 480), QRect(1280, 0, 1920, 1080), QSize(420, 480)},
    };
    for (const auto& [name, natural, area, size] : cases) {
        const QRect content = controlPanelGeometry(natural, frame, area);
        EXPECT_EQ(content.size(), size) << name;
        const QRect outer = content.marginsAdded(frame);
        EXPECT_TRUE(area.contains(outer)) << name;
        EXPECT_LE((outer.center() - area.center()).manhattanLength(), 1) << name;
    }
    EXPECT_EQ(controlPanelGeometry(QSize(420, 480), frame, QRect(0, 0, 10, 10)).topLeft(),
              QPoint(frame.left(), frame.top()))
        << "smaller than its frame: top-left wins";
}

} // namespace
} // namespace brenvik
