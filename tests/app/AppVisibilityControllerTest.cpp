#include "app/AppVisibilityController.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

class FakePolicy : public ActivationPolicy {
public:
    bool setPolicy(ActivationPolicyKind policy) override {
        requested.append(policy);
        return accept;
    }
    void activate() override { ++activations; }

    bool accept = true;
    QList<ActivationPolicyKind> requested;
    int activations = 0;
};

class DockVisibility : public ::testing::Test {
protected:
    QString settingsFile() const { return m_dir.filePath(u"Brenvik.conf"_s); }
    void writeSettings(const QByteArray& contents) const {
        QFile file(settingsFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QTemporaryDir m_dir;
    FakePolicy m_policy;
};

TEST_F(DockVisibility, StoredValueIsReadAtStartWithoutApplying) {
    struct Case {
        const char* name;
        std::optional<QByteArray> contents;
        bool expected;
    };
    const Case cases[] = {
        {"no settings file", std::nullopt, true},
        {"key absent", "[General]\nother=1\n", true},
        {"stored false", "[General]\nshowDockIcon=false\n", false},
        {"stored true", "[General]\nshowDockIcon=true\n", true},
        {"not a Boolean", "[General]\nshowDockIcon=banana\n", true},
        {"empty value", "[General]\nshowDockIcon=\n", true},
        {"corrupt file", QByteArray("\0\xff[[[=\n\x01showDockIcon", 20), true},
    };
    for (const Case& c : cases) {
        QFile::remove(settingsFile());
        if (c.contents)
            writeSettings(*c.contents);
        const AppVisibilityController controller(m_policy, settingsFile());
        EXPECT_EQ(controller.showDockIcon(), c.expected) << c.name;
        EXPECT_EQ(controller.lastError(), std::nullopt) << c.name;
    }
    EXPECT_TRUE(m_policy.requested.isEmpty());
}

TEST_F(DockVisibility, UnreadableSettingsFallBackToShown) {
    // A folder in place of the file cannot be read, not even by root.
    ASSERT_TRUE(QDir().mkpath(settingsFile()));
    AppVisibilityController controller(m_policy, settingsFile());
    EXPECT_TRUE(controller.showDockIcon());

    // Writing fails too: the choice holds for the session and the user hears why.
    controller.setShowDockIcon(false);
    EXPECT_FALSE(controller.showDockIcon());
    EXPECT_EQ(m_policy.requested.last(), ActivationPolicyKind::accessory);
    ASSERT_TRUE(controller.lastError().has_value());
    EXPECT_TRUE(controller.lastError()->contains(settingsFile()))
        << qPrintable(*controller.lastError());
}

TEST_F(DockVisibility, ChoiceSurvivesARestart) {
    {
        AppVisibilityController controller(m_policy, settingsFile());
        controller.setShowDockIcon(false);
    }
    EXPECT_FALSE(AppVisibilityController(m_policy, settingsFile()).showDockIcon());
    {
        AppVisibilityController controller(m_policy, settingsFile());
        controller.setShowDockIcon(true);
    }
    EXPECT_TRUE(AppVisibilityController(m_policy, settingsFile()).showDockIcon());
}

TEST_F(DockVisibility, NativeSettingsLiveInTheConfigHome) {
    {
        AppVisibilityController controller(m_policy, QString());
        controller.setShowDockIcon(false);
    }
    const QString expected =
        QDir(qEnvironmentVariable("XDG_CONFIG_HOME")).filePath(u"Brenvik/Brenvik.conf"_s);
    EXPECT_TRUE(QFile::exists(expected)) << qPrintable(expected);
    EXPECT_FALSE(AppVisibilityController(m_policy, QString()).showDockIcon());
}

TEST_F(DockVisibility, EachAssignmentStoresAppliesAndActivatesWhenShown) {
    struct Step {
        const char* name;
        bool value;
        bool accept;
        ActivationPolicyKind policy;
        int activations; // running total
        std::optional<QString> lastError;
    };
    const QString refusal = AppVisibilityController::kRefusalMessage.toString();
    const Step steps[] = {
        {"hide", false, true, ActivationPolicyKind::accessory, 0, std::nullopt},
        {"hide again", false, true, ActivationPolicyKind::accessory, 0, std::nullopt},
        {"show", true, true, ActivationPolicyKind::regular, 1, std::nullopt},
        {"show again", true, true, ActivationPolicyKind::regular, 2, std::nullopt},
        {"refused hide", false, false, ActivationPolicyKind::accessory, 2, refusal},
        {"next success clears", false, true, ActivationPolicyKind::accessory, 2, std::nullopt},
        {"refused show", true, false, ActivationPolicyKind::regular, 2, refusal},
    };
    AppVisibilityController controller(m_policy, settingsFile());
    QSignalSpy shownSpy(&controller, &AppVisibilityController::showDockIconChanged);
    int index = 0;
    for (const Step& s : steps) {
        m_policy.accept = s.accept;
        writeSettings("[General]\nshowDockIcon=unset\n");
        controller.setShowDockIcon(s.value);
        ++index;
        EXPECT_EQ(shownSpy.count(), index) << s.name;
        EXPECT_EQ(controller.showDockIcon(), s.value) << s.name;
        EXPECT_EQ(m_policy.requested.size(), index) << s.name;
        EXPECT_EQ(m_policy.requested.last(), s.policy) << s.name;
        EXPECT_EQ(m_policy.activations, s.activations) << s.name;
        EXPECT_EQ(controller.lastError(), s.lastError) << s.name;
        // Written every time, refused or not.
        EXPECT_EQ(QSettings(settingsFile(), QSettings::IniFormat).value(u"showDockIcon"_s).toBool(),
                  s.value)
            << s.name;
    }
}

TEST_F(DockVisibility, StartUpApplicationIsSilent) {
    writeSettings("[General]\nshowDockIcon=false\n");
    AppVisibilityController controller(m_policy, settingsFile());
    QSignalSpy errorSpy(&controller, &AppVisibilityController::lastErrorChanged);
    m_policy.accept = false;
    controller.applyActivationPolicy(false, false);
    EXPECT_EQ(m_policy.requested, QList{ActivationPolicyKind::accessory});
    EXPECT_EQ(errorSpy.count(), 0);
    EXPECT_EQ(m_policy.activations, 0);
}

TEST(TaskbarPolicy, RefusedWithoutX11) {
    // The tests run on the offscreen platform: no window manager to ask.
    TaskbarActivationPolicy policy;
    EXPECT_FALSE(policy.setPolicy(ActivationPolicyKind::accessory));
    EXPECT_FALSE(policy.setPolicy(ActivationPolicyKind::regular));
}

} // namespace
} // namespace brenvik
