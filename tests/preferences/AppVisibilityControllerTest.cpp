#include "preferences/AppVisibilityController.h"

#include "tests/views/ViewTestSupport.h"

#include <QDir>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;
using test::RecordingPolicy;

class DockVisibility : public ::testing::Test {
protected:
    QString settingsFile() const { return m_dir.filePath(u"Brenvik.conf"_s); }
    void writeSettings(const QByteArray& contents) const {
        QFile file(settingsFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QTemporaryDir m_dir;
    RecordingPolicy m_policy;
};

// The start-up test reads an absent, a true and a false value with the app.
TEST_F(DockVisibility, StoredValueIsReadAtStartWithoutApplying) {
    const std::tuple<const char*, QByteArray, bool> cases[] = {
        {"stored false", "[General]\nshowDockIcon=false\n", false},
        {"not a Boolean", "[General]\nshowDockIcon=banana\n", true},
        {"corrupt file", QByteArray("\0\xff[[[=\n\x01showDockIcon", 20), true},
    };
    for (const auto& [name, contents, expected] : cases) {
        writeSettings(contents);
        StoredPreferences preferences(settingsFile());
        const AppVisibilityController controller(m_policy, preferences);
        EXPECT_EQ(controller.showDockIcon(), expected) << name;
        EXPECT_EQ(controller.lastError(), std::nullopt) << name;
    }
    EXPECT_TRUE(m_policy.requested.isEmpty());
}

TEST_F(DockVisibility, UnreadableSettingsFallBackToShown) {
    // A folder in place of the file cannot be read, not even by root.
    ASSERT_TRUE(QDir().mkpath(settingsFile()));
    StoredPreferences preferences(settingsFile());
    AppVisibilityController controller(m_policy, preferences);
    EXPECT_TRUE(controller.showDockIcon());

    // Writing fails too: the choice holds for the session and the user hears why.
    controller.setShowDockIcon(false);
    EXPECT_FALSE(controller.showDockIcon());
    EXPECT_EQ(m_policy.requested.last(), ActivationPolicyKind::accessory);
    ASSERT_TRUE(controller.lastError().has_value());
    EXPECT_TRUE(controller.lastError()->contains(settingsFile()))
        << qPrintable(*controller.lastError());
}

TEST_F(DockVisibility, EachAssignmentStoresAppliesAndActivatesWhenShown) {
    using enum ActivationPolicyKind;
    // Name, value, whether the desktop accepts, the policy asked for, the
    // running total of activations, and whether the refusal shows.
    const std::tuple<const char*, bool, bool, ActivationPolicyKind, int, bool> steps[] = {
        {"hide", false, true, accessory, 0, false},
        {"show", true, true, regular, 1, false},
        {"show again", true, true, regular, 2, false},
        {"refused hide", false, false, accessory, 2, true},
        {"refused show", true, false, regular, 2, true},
    };
    StoredPreferences preferences(settingsFile());
    AppVisibilityController controller(m_policy, preferences);
    QSignalSpy shownSpy(&controller, &AppVisibilityController::showDockIconChanged);
    int count = 0;
    for (const auto& [name, value, accept, policy, activations, refused] : steps) {
        ++count;
        m_policy.accept = accept;
        writeSettings("[General]\nshowDockIcon=unset\n");
        controller.setShowDockIcon(value);
        // Published, applied and written every time, refused or not.
        EXPECT_EQ(shownSpy.count(), count) << name;
        EXPECT_EQ(m_policy.requested.size(), count) << name;
        EXPECT_EQ(controller.showDockIcon(), value) << name;
        EXPECT_EQ(m_policy.requested.last(), policy) << name;
        EXPECT_EQ(m_policy.activations, activations) << name;
        EXPECT_EQ(controller.lastError(),
                  refused ? std::optional(AppVisibilityController::kRefusalMessage.toString())
                          : std::nullopt)
            << name;
        EXPECT_EQ(QSettings(settingsFile(), QSettings::IniFormat).value(u"showDockIcon"_s).toBool(),
                  value)
            << name;
    }
}

TEST(TaskbarPolicy, HidingRefusedWithoutX11) {
    // The tests run on the offscreen platform, as Wayland: every window shows.
    TaskbarActivationPolicy policy;
    EXPECT_FALSE(policy.desktopCanHide());
    EXPECT_FALSE(policy.setPolicy(ActivationPolicyKind::accessory));
    EXPECT_TRUE(policy.setPolicy(ActivationPolicyKind::regular)) << "showing holds";
    EXPECT_FALSE(policy.setPolicy(ActivationPolicyKind::accessory)) << "after showing";
}

} // namespace
} // namespace brenvik
