#include "app/AppModel.h"

#include "app/AppVisibilityController.h"
#include "app/ControlPanelController.h"
#include "app/LaunchAtLoginController.h"
#include "app/StatusItemController.h"
#include "tests/app/ShellTestSupport.h"
#include "tests/monitor/MonitorTestSupport.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

using namespace std::chrono_literals;

class RecordingPolicy : public ActivationPolicy {
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

// A start-up step the model asked to run later.
struct Deferred {
    std::chrono::milliseconds delay;
    std::function<void()> step;
};

class Startup : public ::testing::Test {
protected:
    void SetUp() override { storeShowDockIcon(std::nullopt); }
    void TearDown() override {
        m_scan.release();
        if (m_model)
            (void)test::waitForRefreshToEnd(m_model->monitor());
        if (m_model && m_model->controlPanel().window())
            m_model->controlPanel().window()->close();
    }

    static void storeShowDockIcon(std::optional<bool> value) {
        QSettings settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Brenvik"),
                           QStringLiteral("Brenvik"));
        if (value)
            settings.setValue(QStringLiteral("showDockIcon"), *value);
        else
            settings.remove(QStringLiteral("showDockIcon"));
        settings.sync();
    }

    AppModel& makeModel() {
        AppModel::Parts parts;
        parts.scan = m_scan.function();
        parts.clock = m_clock.function();
        parts.activationPolicy = &m_policy;
        parts.traySurface = &m_surface;
        parts.runAfter = [this](std::chrono::milliseconds delay, std::function<void()> step) {
            m_deferred.append({delay, std::move(step)});
        };
        m_model = std::make_unique<AppModel>(std::move(parts));
        return *m_model;
    }

    test::ScriptedScan m_scan;
    test::ManualClock m_clock;
    RecordingPolicy m_policy;
    test::RecordingSurface m_surface;
    QList<Deferred> m_deferred;
    std::unique_ptr<AppModel> m_model;
};

TEST_F(Startup, StatusItemIsDrawnBeforeTheFirstRefreshResult) {
    AppModel& model = makeModel();
    m_scan.hold();
    m_scan.returns({test::sample(41, 25.0, 3.0, true)});
    EXPECT_TRUE(m_surface.icons.isEmpty()) << "drawn before bootstrap";

    model.bootstrap();
    EXPECT_TRUE(model.monitor().isRefreshing()) << "the first refresh starts in bootstrap";
    EXPECT_FALSE(model.monitor().lastUpdated().has_value());
    ASSERT_EQ(m_surface.icons.size(), 1);
    EXPECT_EQ(m_surface.toolTips, QList<QString>{QStringLiteral("No Codex CLI process detected")});
    EXPECT_EQ(model.statusItem().appearance()->color, StateColor::green);
    EXPECT_EQ(model.statusItem().appearance()->badge, QString());

    m_scan.release();
    ASSERT_TRUE(test::waitForRefreshToEnd(model.monitor()));
    QApplication::processEvents();
    EXPECT_EQ(model.statusItem().appearance()->color, StateColor::yellow);
    EXPECT_EQ(m_surface.toolTips.last(), QStringLiteral("1 Codex process running"));
}

TEST_F(Startup, ControlPanelOpensOnTheNextEventLoopTurn) {
    AppModel& model = makeModel();
    model.bootstrap();
    EXPECT_EQ(model.controlPanel().window(), nullptr) << "opened within bootstrap";
    QApplication::processEvents();
    ASSERT_NE(model.controlPanel().window(), nullptr);
    EXPECT_TRUE(model.controlPanel().window()->isVisible());
    EXPECT_EQ(model.controlPanel().window()->windowTitle(), QStringLiteral("Brenvik"));
}

TEST_F(Startup, StoredDockPreferenceOffIsAppliedSilentlyAfter150Milliseconds) {
    struct Case {
        const char* name;
        std::optional<bool> stored;
        bool policyAccepts;
        bool expectDockStep;
    };
    const Case cases[] = {
        {"absent", std::nullopt, true, false},
        {"stored true", true, true, false},
        {"stored false", false, true, true},
        {"stored false, desktop refuses", false, false, true},
    };
    for (const Case& c : cases) {
        storeShowDockIcon(c.stored);
        m_deferred.clear();
        m_policy = RecordingPolicy();
        m_policy.accept = c.policyAccepts;
        AppModel& model = makeModel();
        model.bootstrap();
        EXPECT_TRUE(m_policy.requested.isEmpty()) << c.name << ": applied during bootstrap";
        QApplication::processEvents();
        EXPECT_TRUE(m_policy.requested.isEmpty()) << c.name << ": applied with the panel";

        ASSERT_EQ(m_deferred.size(), c.expectDockStep ? 1 : 0) << c.name;
        if (c.expectDockStep) {
            EXPECT_EQ(m_deferred.front().delay, 150ms) << c.name;
            m_deferred.front().step();
            EXPECT_EQ(m_policy.requested, QList{ActivationPolicyKind::accessory}) << c.name;
            EXPECT_EQ(m_policy.activations, 0) << c.name << ": brought to the front";
            EXPECT_EQ(model.appVisibility().lastError(), std::nullopt) << c.name;
        }
        ASSERT_TRUE(test::waitForRefreshToEnd(model.monitor())) << c.name;
        model.controlPanel().window()->close();
    }
}

TEST_F(Startup, RefreshNowRereadsTheLoginItemThenRefreshes) {
    AppModel& model = makeModel();
    // Registered behind the controller's back, as another session would; the
    // test binary itself may live where no entry may point (under /tmp).
    const QString entryPath = model.launchAtLogin().entry().filePath();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(entryPath).path()));
    QFile entry(entryPath);
    ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nType=Application\nName=Brenvik\nExec=brenvik\n");
    entry.close();
    model.launchAtLogin().setStatus(model.launchAtLogin().systemStatus());
    ASSERT_EQ(model.launchAtLogin().status(), LaunchAtLoginStatus::enabled);
    ASSERT_TRUE(QFile::remove(entryPath));
    ASSERT_EQ(model.launchAtLogin().status(), LaunchAtLoginStatus::enabled)
        << "re-read without being asked";

    m_scan.hold();
    model.refreshNow();
    EXPECT_NE(model.launchAtLogin().status(), LaunchAtLoginStatus::enabled);
    EXPECT_EQ(model.launchAtLogin().status(), model.launchAtLogin().systemStatus());
    EXPECT_TRUE(model.monitor().isRefreshing());
    // A second press while the scan runs re-reads again but starts no scan.
    model.refreshNow();
    m_scan.release();
    ASSERT_TRUE(test::waitForRefreshToEnd(model.monitor()));
    EXPECT_EQ(m_scan.started(), 1);
}

} // namespace
} // namespace brenvik
