#include "app/ControlPanelController.h"

#include "app/AppVisibilityController.h"
#include "app/LaunchAtLoginController.h"
#include "tests/app/ShellTestSupport.h"
#include "tests/monitor/MonitorTestSupport.h"
#include "views/ControlPanelView.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

class FixedPolicy : public ActivationPolicy {
public:
    bool setPolicy(ActivationPolicyKind) override { return true; }
    void activate() override {}
};

class ControlPanel : public ::testing::Test {
protected:
    test::ScriptedScan m_scan;
    test::ManualClock m_clock;
    CodexProcessMonitor m_monitor{m_scan.function(), m_clock.function()};
    LaunchAtLoginController m_launchAtLogin;
    FixedPolicy m_policy;
    AppVisibilityController m_appVisibility{m_policy, QString()};
    test::RecordingActions m_actions;
    ControlPanelController m_controller{m_monitor, m_launchAtLogin, m_appVisibility, m_actions};
};

TEST_F(ControlPanel, BuildsOneFixedSizeWindowCentredOnce) {
    EXPECT_EQ(m_controller.window(), nullptr) << "no window before the first show";
    m_controller.show();
    QWidget* window = m_controller.window();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Brenvik"));
    EXPECT_EQ(window->size(), QSize(420, 480));
    EXPECT_EQ(window->minimumSize(), QSize(420, 480)) << "resizable";
    EXPECT_EQ(window->maximumSize(), QSize(420, 480)) << "resizable";
    EXPECT_NE(window->findChild<ControlPanelView*>(), nullptr);
    const QPoint centre = QGuiApplication::primaryScreen()->availableGeometry().center();
    EXPECT_LE((window->geometry().center() - centre).manhattanLength(), 4);

    // Closing hides; later shows bring back the same window where it was left.
    struct Step {
        const char* name;
        bool closeFirst;
        std::optional<QPoint> moveTo;
    };
    const Step steps[] = {
        {"shown again while open", false, std::nullopt},
        {"closed, then shown", true, std::nullopt},
        {"moved, closed, then shown", true, QPoint(40, 60)},
    };
    for (const Step& step : steps) {
        if (step.moveTo)
            window->move(*step.moveTo);
        const QPoint before = window->pos();
        if (step.closeFirst) {
            EXPECT_TRUE(window->close()) << step.name;
            EXPECT_FALSE(window->isVisible()) << step.name;
        }
        m_controller.show();
        EXPECT_EQ(m_controller.window(), window) << step.name;
        EXPECT_TRUE(window->isVisible()) << step.name;
        EXPECT_EQ(window->pos(), before) << step.name;
        EXPECT_EQ(window->size(), QSize(420, 480)) << step.name;
    }
    EXPECT_EQ(QApplication::topLevelWidgets().count(window), 1);
    m_controller.window()->close();
}

} // namespace
} // namespace brenvik
