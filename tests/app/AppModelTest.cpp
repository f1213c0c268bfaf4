#include "app/AppModel.h"

#include "app/ControlPanelController.h"
#include "app/StatusItemController.h"
#include "preferences/AppVisibilityController.h"
#include "preferences/LaunchAtLoginController.h"
#include "preferences/NotificationsController.h"
#include "tests/app/ShellTestSupport.h"
#include "views/ControlPanelView.h"
#include "views/StatusPresentation.h"
#include "views/ViewStyle.h"

#include <QApplication>
#include <QSettings>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

class Startup : public ::testing::Test {
protected:
    void SetUp() override {
        storeShowDockIcon(std::nullopt);
        stored().remove(u"notifySessions"_s);
    }
    void TearDown() override {
        m_scan.release();
        if (!m_model)
            return;
        (void)test::waitForRefreshToEnd(m_model->monitor());
        if (QWidget* window = m_model->controlPanel().window())
            window->close();
    }

    static QSettings stored() {
        return QSettings(QSettings::NativeFormat, QSettings::UserScope, u"Brenvik"_s, u"Brenvik"_s);
    }
    static void storeShowDockIcon(std::optional<bool> value) {
        if (value)
            stored().setValue(u"showDockIcon"_s, *value);
        else
            stored().remove(u"showDockIcon"_s);
    }

    // No session has a place here; going there does what m_goResult says.
    static PlaceLookup placeFinder(const SessionQuery&) { return {std::nullopt, u"none"_s}; }
    SessionPlaceTracker::GoFunction goTo = [this](const SessionQuery& query, const auto&) {
        m_wentTo.push_back(query.pid);
        return m_goResult;
    };

    AppModel& makeModel() {
        const auto runAfter = [this](auto delay, auto step) { m_deferred.append({delay, step}); };
        m_model = std::make_unique<AppModel>(AppModel::Parts{.scan = m_scan.function(),
                                                             .clock = m_clock.function(),
                                                             .activationPolicy = &m_policy,
                                                             .traySurface = &m_surface,
                                                             .runAfter = runAfter,
                                                             .notificationBus = &m_bus,
                                                             .settingsFile = {},
                                                             .placeFinder = placeFinder,
                                                             .goTo = goTo});
        return *m_model;
    }

    test::ScriptedScan m_scan;
    test::ManualClock m_clock;
    test::RecordingNotificationBus m_bus;
    test::RecordingPolicy m_policy;
    test::RecordingSurface m_surface;
    // Start-up steps the model asked to run later, with their delays.
    QList<std::pair<std::chrono::milliseconds, std::function<void()>>> m_deferred;
    std::unique_ptr<AppModel> m_model;
    std::vector<qint64> m_wentTo; // not QList: Qt 6.4 compares an emptied one with memcmp
    GoResult m_goResult;
};

TEST_F(Startup, StatusItemBeforeTheFirstResultAndThePanelOnTheNextTurn) {
    AppModel& model = makeModel();
    m_scan.hold();
    m_scan.returns({test::sample(41, 25.0, 3.0, true)});
    EXPECT_TRUE(m_surface.icons.isEmpty()) << "drawn before bootstrap";

    model.bootstrap();
    EXPECT_TRUE(model.monitor().isRefreshing()) << "the first refresh starts in bootstrap";
    ASSERT_EQ(m_surface.icons.size(), 1);
    EXPECT_EQ(m_surface.toolTips.size(), 1);
    EXPECT_EQ(model.statusItem().appearance()->color, StateColor::green);
    EXPECT_EQ(model.controlPanel().window(), nullptr) << "opened within bootstrap";
    QApplication::processEvents();
    ASSERT_NE(model.controlPanel().window(), nullptr);
    EXPECT_TRUE(model.controlPanel().window()->isVisible());

    m_scan.release();
    ASSERT_TRUE(test::waitForRefreshToEnd(model.monitor()));
    QApplication::processEvents();
    EXPECT_EQ(model.statusItem().appearance()->color, StateColor::yellow);
}

// A session that worked and went quiet is announced once; with the
// preference off, never.
TEST_F(Startup, FinishedSessionsAreAnnouncedUnlessTurnedOff) {
    for (const bool enabled : {true, false}) {
        SCOPED_TRACE(enabled ? "on" : "off");
        m_bus.summaries.clear();
        AppModel& model = makeModel();
        model.notifications().setEnabled(enabled);
        DetectedProcessSample busy = test::sample(41, 50.0, 3.0, true);
        busy.cwd = u"/home/u/brenvik"_s;
        DetectedProcessSample quiet = busy;
        quiet.totalCPUPercent = 0;
        quiet.hasHotState = false;
        for (const auto& [ms, sample] : {std::pair{0, busy}, {6000, busy}, {18000, quiet}}) {
            m_scan.returns({sample});
            ASSERT_TRUE(test::refreshAt(model.monitor(), m_clock, ms));
            QApplication::processEvents();
        }
        // Its wording is the notification policy's, tested there; the project
        // it names comes from here.
        EXPECT_EQ(m_bus.summaries.size(), enabled ? 1 : 0);
        EXPECT_EQ(m_bus.summaries.filter(u"brenvik"_s), m_bus.summaries);
        // A click on it goes to its session; where that fails or only selects
        // its pane, the panel comes forward and says so. A notice no longer
        // known opens the panel.
        using enum GoResult::Outcome;
        const std::tuple<GoResult, quint32, bool, QString> clicks[] = {
            {{went, {}}, 1, true, {}},
            {{failed, u"Cannot go: gone"_s}, 1, true, u"Cannot go: gone"_s},
            {{selected, u"In tmux w:1.0"_s}, 1, true, u"In tmux w:1.0"_s},
            {{went, {}}, 7, false, u"In tmux w:1.0"_s},
        };
        for (const auto& [result, notice, goes, line] : clicks) {
            if (!enabled)
                break;
            if (QWidget* window = model.controlPanel().window())
                window->close();
            m_wentTo.clear();
            m_goResult = result;
            model.goToSessionOfNotice(notice);
            EXPECT_EQ(m_wentTo, goes ? std::vector<qint64>{41} : std::vector<qint64>()) << notice;
            QWidget* panel = model.controlPanel().window();
            EXPECT_EQ(panel && panel->isVisible(), !line.isEmpty()) << result.text.toStdString();
            if (panel) {
                EXPECT_EQ(model.controlPanel().view()->goResultLine()->fullText(), line);
            }
        }
        m_model.reset();
    }
}

TEST_F(Startup, AtLoginIntoTheTrayOnly) {
    AppModel& model = makeModel();
    model.bootstrap(/*openControlPanel=*/false);
    QApplication::processEvents();
    EXPECT_EQ(model.controlPanel().window(), nullptr);
    EXPECT_EQ(m_surface.icons.size(), 1);
}

// Applied silently 150 ms after the panel; on Wayland, where nothing can keep
// the panel out of the taskbar, refused at once: the switch says so from the
// start, and the user's choice stays stored as it was.
TEST_F(Startup, StoredDockPreferenceOffIsAppliedAfter150MillisecondsOrRefusedAtOnce) {
    // Name, stored value, whether the desktop accepts and can hide, whether a
    // Dock step follows.
    const std::tuple<const char*, std::optional<bool>, bool, bool, bool> cases[] = {
        {"absent", std::nullopt, true, true, false},
        {"stored true", true, true, true, false},
        {"stored false", false, true, true, true},
        {"stored false, desktop refuses", false, false, true, true},
        {"stored false, desktop cannot hide", false, false, false, false},
    };
    for (const auto& [name, value, accepts, canHide, dockStep] : cases) {
        storeShowDockIcon(value);
        m_deferred.clear();
        m_policy = test::RecordingPolicy();
        m_policy.accept = accepts;
        m_policy.canHide = canHide;
        AppModel& model = makeModel();
        model.bootstrap();
        QApplication::processEvents();
        EXPECT_EQ(m_policy.requested.isEmpty(), canHide) << name << ": applied with the panel";

        ASSERT_EQ(m_deferred.size(), dockStep ? 1 : 0) << name;
        if (dockStep) {
            EXPECT_EQ(m_deferred.front().first, 150ms) << name;
            m_deferred.front().second();
            EXPECT_EQ(m_policy.activations, 0) << name << ": brought to the front";
            EXPECT_EQ(model.appVisibility().lastError(), std::nullopt) << name;
        }
        if (dockStep || !canHide) {
            EXPECT_EQ(m_policy.requested, QList{ActivationPolicyKind::accessory}) << name;
        }
        if (!canHide) {
            EXPECT_EQ(model.appVisibility().lastError(),
                      AppVisibilityController::kCannotHideMessage.toString());
            EXPECT_FALSE(model.appVisibility().showDockIcon());
            EXPECT_EQ(stored().value(u"showDockIcon"_s), QVariant(false));
        }
        ASSERT_TRUE(test::waitForRefreshToEnd(model.monitor())) << name;
        model.controlPanel().window()->close();
    }
}

TEST_F(Startup, RefreshNowRereadsTheLoginItemThenRefreshes) {
    AppModel& model = makeModel();
    LaunchAtLoginController& login = model.launchAtLogin();
    // A status the disk does not hold, as if changed behind the app's back.
    login.setStatus(LaunchAtLoginStatus::requiresApproval);
    std::optional<LaunchAtLoginStatus> statusWhenRefreshing;
    QObject::connect(&model.monitor(), &CodexProcessMonitor::isRefreshingChanged, &model,
                     [&] { statusWhenRefreshing = login.status(); });
    m_scan.hold();
    model.refreshNow();
    EXPECT_TRUE(model.monitor().isRefreshing());
    EXPECT_EQ(statusWhenRefreshing, login.systemStatus()) << "re-read after the refresh began";
    EXPECT_NE(login.status(), LaunchAtLoginStatus::requiresApproval);
    // A second press while the scan runs re-reads again but starts no scan.
    login.setStatus(LaunchAtLoginStatus::requiresApproval);
    model.refreshNow();
    EXPECT_EQ(login.status(), login.systemStatus());
    m_scan.release();
    ASSERT_TRUE(test::waitForRefreshToEnd(model.monitor()));
    EXPECT_EQ(m_scan.started(), 1);
}

// The line names what to install on this desktop, and lasts only until a tray
// comes; so does the room it took.
TEST_F(Startup, ThePanelSaysInOneLineWhileNoTrayShowsTheIcon) {
    const QByteArray desktopBefore = qgetenv("XDG_CURRENT_DESKTOP");
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME"); // the longest line
    m_surface.setHostAvailable(false);
    AppModel& model = makeModel();
    model.bootstrap();
    QApplication::processEvents();
    ASSERT_NE(model.controlPanel().window(), nullptr);
    QWidget& window = *model.controlPanel().window();
    const ElidingLabel& line = *window.findChild<ControlPanelView*>()->missingTrayLine();
    EXPECT_TRUE(line.isVisible()) << "no tray at start";
    EXPECT_TRUE(line.fullText().contains(u"gnome-shell-extension-appindicator"_s));
    EXPECT_EQ(line.text(), line.fullText()) << "clipped";
    m_surface.setHostAvailable(true);
    test::settle();
    EXPECT_FALSE(line.isVisible()) << "shown while a tray is there";
    const QSize withTray = window.size();
    m_surface.setHostAvailable(false);
    test::settle();
    EXPECT_TRUE(line.isVisible());
    m_surface.setHostAvailable(true);
    test::settle();
    EXPECT_EQ(window.size(), withTray);
    for (const char* elsewhere : {"KDE", ""})
        EXPECT_TRUE(missingTrayText(QString::fromLatin1(elsewhere)).contains(u"trayer"_s));
    qputenv("XDG_CURRENT_DESKTOP", desktopBefore);
}

} // namespace
} // namespace brenvik
