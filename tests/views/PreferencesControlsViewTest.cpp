#include "views/PreferencesControlsView.h"

#include "ViewTestSupport.h"
#include "views/ToggleSwitch.h"
#include "views/ViewStyle.h"

#include <QApplication>
#include <QFile>
#include <QTest>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;
using namespace brenvik::test;

void settle() {
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

class PreferencesControls : public ::testing::Test {
protected:
    PreferencesControls()
        : m_view(m_preferences.launchAtLogin, m_preferences.appVisibility) {
        m_view.resize(384, 200);
        m_view.show();
        settle();
    }

    PrivatePreferences m_preferences;
    PreferencesControlsView m_view;
};

TEST_F(PreferencesControls, LaunchSwitchShowsThePublishedStatus) {
    struct Case {
        const char* name;
        int status;
        bool on;
        QString text;
        NamedColor color;
    };
    const Case cases[] = {
        {"notRegistered", 0, false, u"Launch at login is off"_s, NamedColor::secondary},
        {"enabled", 1, true, u"Launch at login is enabled"_s, NamedColor::secondary},
        {"requiresApproval", 2, true,
         u"Launch at login is waiting for approval in System Settings"_s, NamedColor::orange},
        {"notFound", 3, false, u"Launch-at-login service is not available for this app bundle"_s,
         NamedColor::secondary},
        {"unknown", 9, false, u"Launch-at-login status is unavailable"_s, NamedColor::secondary},
    };
    for (const Case& c : cases) {
        m_preferences.launchAtLogin.setStatus(static_cast<LaunchAtLoginStatus>(c.status));
        settle();
        EXPECT_EQ(m_view.launchAtLoginSwitch()->isChecked(), c.on) << c.name;
        EXPECT_EQ(m_view.launchStatusLabel()->text(), c.text) << c.name;
        EXPECT_EQ(m_view.launchStatusLabel()->color(), c.color) << c.name;
    }
}

TEST_F(PreferencesControls, LaunchSwitchAsksForTheOtherPositionAndShowsWhatDiskHolds) {
    ToggleSwitch* toggle = m_view.launchAtLoginSwitch();
    ASSERT_FALSE(toggle->isChecked());
    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_EQ(m_preferences.launchAtLogin.status(), LaunchAtLoginStatus::enabled);

    // Block the write: the click asks, the failure shows, the switch stays at
    // the re-read status.
    const QString entry = m_preferences.launchAtLogin.entry().filePath();
    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    ASSERT_FALSE(QFile::exists(entry));
    const QString folder = entry.section(u'/', 0, -2);
    ASSERT_TRUE(QDir(folder).removeRecursively());
    QFile blocker(folder);
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();

    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_TRUE(m_view.launchErrorLabel()->isVisible());
    EXPECT_EQ(m_view.launchErrorLabel()->text(), *m_preferences.launchAtLogin.lastError());
    EXPECT_EQ(m_view.launchErrorLabel()->color(), NamedColor::red);
    EXPECT_EQ(m_view.launchStatusLabel()->text(), u"Launch at login is off"_s);

    // Turning it off while approval is pending asks for off.
    ASSERT_TRUE(QFile::remove(folder));
    m_preferences.launchAtLogin.setStatus(LaunchAtLoginStatus::requiresApproval);
    settle();
    ASSERT_TRUE(toggle->isChecked());
    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_FALSE(m_view.launchErrorLabel()->isVisible());
}

TEST_F(PreferencesControls, DockSwitchBindsToThePreference) {
    ToggleSwitch* toggle = m_view.dockSwitch();
    ASSERT_TRUE(toggle->isChecked());
    EXPECT_EQ(m_view.dockDescriptionLabel()->text(),
              u"The app appears in the Dock while running"_s);

    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    EXPECT_FALSE(m_preferences.appVisibility.showDockIcon());
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_EQ(m_view.dockDescriptionLabel()->text(),
              u"The app runs as a menu bar utility and stays hidden from the Dock"_s);
    EXPECT_FALSE(m_view.dockErrorLabel()->isVisible());

    // Refused: the switch keeps the choice and the message shows in red, on
    // at most two lines; the next accepted switch clears it.
    m_preferences.policy.accept = false;
    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_TRUE(m_view.dockErrorLabel()->isVisible());
    EXPECT_EQ(m_view.dockErrorLabel()->text(), AppVisibilityController::kRefusalMessage.toString());
    EXPECT_TRUE(m_view.dockErrorLabel()->wordWrap());
    EXPECT_LE(m_view.dockErrorLabel()->height(),
              m_view.dockErrorLabel()->fontMetrics().lineSpacing() * 2 + 4);
    m_preferences.policy.accept = true;
    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    EXPECT_FALSE(m_view.dockErrorLabel()->isVisible());
}

TEST_F(PreferencesControls, SwitchesCarryTheirLabelsForAccessibility) {
    EXPECT_EQ(m_view.launchAtLoginSwitch()->accessibleName(), u"Launch at login"_s);
    EXPECT_EQ(m_view.dockSwitch()->accessibleName(), u"Show in Dock while running"_s);
    // Space toggles like a click.
    m_view.dockSwitch()->setFocus();
    QTest::keyClick(m_view.dockSwitch(), Qt::Key_Space);
    settle();
    EXPECT_FALSE(m_preferences.appVisibility.showDockIcon());
}

} // namespace
} // namespace brenvik
