#include "app/StatusItemController.h"

#include "../monitor/Matches.h"
#include "tests/app/ShellTestSupport.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

class StatusItem : public ::testing::Test {
protected:
    test::ScriptedMonitor m_scripted;
    test::RecordingActions m_actions;
    test::RecordingSurface m_surface;
    StatusItemController m_controller{m_actions, m_surface};
};

TEST_F(StatusItem, PushesOnlyWhatChanged) {
    // Name, state, and how many new icons and tool tips reach the tray.
    const std::tuple<const char*, CodexRunState, int, int> steps[] = {
        {"first drawing", CodexRunState::idle(), 1, 1},
        {"idle again", CodexRunState::idle(), 0, 0},
        {"three, one running", CodexRunState::observed(3, 1, 2), 1, 1},
        {"three, two running: same dot and count", CodexRunState::observed(3, 2, 1), 0, 1},
        {"one waits: violet bubble", CodexRunState::observed(3, 1, 1, 1, {u"brenvik"_s}), 1, 1},
        {"another project waits instead: same icon",
         CodexRunState::observed(3, 1, 1, 1, {u"parser"_s}), 0, 1},
        {"150 groups", CodexRunState::observed(150, 2, 148), 1, 1},
        {"151 groups: still 99+", CodexRunState::observed(151, 2, 149), 0, 1},
        {"detection fails", CodexRunState::error(u"a"_s), 1, 1},
        {"nothing found", CodexRunState::idle(), 1, 1},
    };
    qsizetype icons = 0;
    qsizetype toolTips = 0;
    for (const auto& [name, state, newIcons, newToolTips] : steps) {
        m_controller.updateButton(state);
        EXPECT_EQ(m_surface.icons.size() - icons, newIcons) << name;
        EXPECT_EQ(m_surface.toolTips.size() - toolTips, newToolTips) << name;
        icons = m_surface.icons.size();
        toolTips = m_surface.toolTips.size();
        EXPECT_EQ(m_surface.toolTips.last(), detailText(state)) << name;
        EXPECT_EQ(m_controller.appearance()->color, stateColor(state)) << name;
        EXPECT_EQ(m_controller.appearance()->badge, badgeText(state)) << name;
    }
}

TEST_F(StatusItem, MenuOffersTheSessionsThatWaitOrRunWhenTheyChange) {
    using test::match;
    using enum ProcessActivityStatus;
    // Name, matches, and whether the menu's sessions are pushed anew.
    const std::tuple<const char*, QList<ProcessMatch>, bool> steps[] = {
        {"first: none", {}, true},
        {"an idle one is not offered", {match(7, idle)}, false},
        {"it runs", {match(7, running)}, true},
        {"it still runs", {match(7, running)}, false},
        {"another waits", {match(7, running), match(9, waiting)}, true},
    };
    for (const auto& [name, matches, pushed] : steps) {
        const qsizetype before = m_surface.sessionItems.size();
        m_controller.updateMenu(matches);
        EXPECT_EQ(m_surface.sessionItems.size() - before, pushed ? 1 : 0) << name;
        EXPECT_EQ(m_surface.sessionItems.last(), sessionMenuItems(matches)) << name;
    }
}

TEST_F(StatusItem, DrawsAtOnceAndRedrawsOnTheTurnAfterEachPublish) {
    CodexProcessMonitor& monitor = m_scripted.monitor;
    m_controller.configure(monitor);
    ASSERT_EQ(m_surface.toolTips.size(), 1);
    ASSERT_EQ(m_surface.icons.size(), 1);

    bool sawOldStateAtPublish = false;
    QObject::connect(&monitor, &CodexProcessMonitor::matchesChanged, &monitor,
                     [&] { sawOldStateAtPublish = m_controller.appearance()->badge.isEmpty(); });
    ASSERT_TRUE(m_scripted.refreshWith({test::sample(300, 50.0, 1.0, true)}));
    EXPECT_TRUE(sawOldStateAtPublish) << "redrawn before the monitor stored its matches";
    QApplication::processEvents();
    EXPECT_EQ(m_controller.appearance()->color, StateColor::yellow);

    // A log that names the plan's limits adds their line under the status.
    SessionLogState log;
    log.phase = TurnPhase::idle;
    log.codexHome = u"/h"_s;
    log.rateLimits = RateLimits{RateLimitWindow{42, 300, {}}, {}, {}, {}, {}};
    ASSERT_TRUE(m_scripted.refreshWith({test::sample(300, 0.0, 1.0, true)}, {log}));
    QApplication::processEvents();
    EXPECT_EQ(m_surface.toolTips.last(),
              detailText(m_scripted.monitor.runState()) + u'\n' +
                  limitsLineText(*log.rateLimits, QDateTime::currentDateTimeUtc()));
}

} // namespace
} // namespace brenvik
