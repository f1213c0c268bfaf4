#include "views/PreferencesControlsView.h"

#include "ViewTestSupport.h"
#include "views/PreferencesPresentation.h"
#include "views/ToggleSwitch.h"
#include "views/ViewStyle.h"

#include <QDir>
#include <QTest>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;
using namespace brenvik::test;

class PreferencesControls : public ::testing::Test {
protected:
    PreferencesControls() {
        m_view.resize(384, 200);
        m_view.show();
        settle();
    }
    void click(ToggleSwitch* toggle) {
        QTest::mouseClick(toggle, Qt::LeftButton);
        settle();
    }

    PrivatePreferences m_preferences;
    PreferencesControlsView m_view{m_preferences.launchAtLogin, m_preferences.appVisibility};
};

TEST_F(PreferencesControls, LaunchSwitchShowsThePublishedStatusNotTheClick) {
    ToggleSwitch* toggle = m_view.launchAtLoginSwitch();
    ASSERT_FALSE(toggle->isChecked());
    click(toggle);
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_EQ(m_preferences.launchAtLogin.status(), LaunchAtLoginStatus::enabled);

    // Block the write: the click asks, the failure shows, the switch stays at
    // the re-read status.
    const QString entry = m_preferences.launchAtLogin.entry().filePath();
    click(toggle);
    ASSERT_FALSE(QFile::exists(entry));
    const QString folder = entry.section(u'/', 0, -2);
    ASSERT_TRUE(QDir(folder).removeRecursively());
    ASSERT_TRUE(QFile(folder).open(QIODevice::WriteOnly));
    click(toggle);
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_TRUE(m_view.launchErrorLabel()->isVisible());
    EXPECT_EQ(m_view.launchErrorLabel()->text(), *m_preferences.launchAtLogin.lastError());
    EXPECT_EQ(m_view.launchErrorLabel()->color(), NamedColor::red);
    EXPECT_EQ(m_view.launchStatusLabel()->text(),
              launchAtLoginPresentation(LaunchAtLoginStatus::notRegistered).text);

    // Approval pending shows on, in orange; a click asks for off.
    ASSERT_TRUE(QFile::remove(folder));
    m_preferences.launchAtLogin.setStatus(LaunchAtLoginStatus::requiresApproval);
    settle();
    ASSERT_TRUE(toggle->isChecked());
    EXPECT_EQ(m_view.launchStatusLabel()->text(),
              launchAtLoginPresentation(LaunchAtLoginStatus::requiresApproval).text);
    EXPECT_EQ(m_view.launchStatusLabel()->color(), NamedColor::orange);
    click(toggle);
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_FALSE(m_view.launchErrorLabel()->isVisible());
}

TEST_F(PreferencesControls, DockSwitchBindsToThePreference) {
    ToggleSwitch* toggle = m_view.dockSwitch();
    ASSERT_TRUE(toggle->isChecked());
    EXPECT_EQ(toggle->accessibleName(), u"Show in taskbar while running"_s);
    EXPECT_EQ(m_view.dockDescriptionLabel()->text(), dockVisibilityDescription(true));
    // Space toggles like a click.
    toggle->setFocus();
    QTest::keyClick(toggle, Qt::Key_Space);
    settle();
    EXPECT_FALSE(m_preferences.appVisibility.showDockIcon());
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_EQ(m_view.dockDescriptionLabel()->text(), dockVisibilityDescription(false));
    EXPECT_FALSE(m_view.dockErrorLabel()->isVisible());

    // Refused: the switch keeps the choice and the message shows in red, on
    // at most two lines; the next accepted switch clears it.
    m_preferences.policy.accept = false;
    click(toggle);
    QLabel* error = m_view.dockErrorLabel();
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_TRUE(error->isVisible());
    EXPECT_EQ(error->text(), AppVisibilityController::kRefusalMessage.toString());
    EXPECT_TRUE(error->wordWrap());
    EXPECT_LE(error->height(), error->fontMetrics().lineSpacing() * 2 + 4);
    m_preferences.policy.accept = true;
    click(toggle);
    EXPECT_FALSE(error->isVisible());
}

} // namespace
} // namespace brenvik
