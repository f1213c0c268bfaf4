#include "app/ControlPanelController.h"

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
    EXPECT_LE((window->geometry().center() - centre).manhattanLength(), 4);

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

// A 16 pt font: the panel grows until nothing in it is cut, within the screen.
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
        EXPECT_GE(window->width(), 420);
        EXPECT_GE(window->height(), 480);
        EXPECT_GE(view->processList()->height(), 3 * ProcessRowView::kHeight) << "three rows";
        EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().size().expandedTo(
                        window->size()) ==
                    QGuiApplication::primaryScreen()->availableGeometry().size());
        for (const QWidget* button : {static_cast<const QWidget*>(view->refreshButton()),
                                      static_cast<const QWidget*>(view->quitButton())})
            EXPECT_GE(button->width(), button->sizeHint().width()) << "a button cut short";
        EXPECT_GE(view->lastUpdatedLabel()->width(),
                  view->lastUpdatedLabel()->minimumSizeHint().width());
        window->close();
    }
    QApplication::setFont(before);
}

} // namespace
} // namespace brenvik
