#include "views/MenuPopoverView.h"

#include "ViewTestSupport.h"
#include "views/StatusPresentation.h"
#include "views/StatusViews.h"

#include <QTest>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;
using namespace brenvik::test;

TEST(MenuPopoverView, HeaderFollowsTheMonitorTheWaitingLineGoesThereAndTheButtonOpensThePanel) {
    ScriptedMonitor scripted;
    RecordingActions actions;
    MenuPopoverView popover(scripted.monitor, actions);
    popover.adjustSize();
    popover.show();
    EXPECT_EQ(popover.width(), 300);

    // The header shows what the presentation makes of the run state; the
    // waiting line goes to the session that waits.
    auto waits = group(8, u"codex"_s);
    waits.cwd = QDir::homePath() + u"/projects/brenvik"_s;
    const std::pair<const char*, std::function<bool()>> cases[] = {
        {"before the first refresh", [] { return true; }},
        {"one running, one waiting",
         [&] {
             return scripted.refreshWith({group(7, u"codex"_s, 30.0), waits},
                                         {std::nullopt, waitingLog(at(-5000))});
         }},
        {"failure", [&] { return scripted.failWith(u"ps: not found"_s); }},
    };
    for (const auto& [name, reach] : cases) {
        ASSERT_TRUE(reach()) << name;
        settle();
        const CodexRunState state = scripted.monitor.runState();
        EXPECT_EQ(popover.header()->stateColor(), namedColor(stateColor(state))) << name;
        EXPECT_EQ(popover.header()->badgeText(), badgeText(state)) << name;
        EXPECT_EQ(popover.header()->summaryText(), scripted.monitor.summary()) << name;
        EXPECT_EQ(popover.header()->waitingText(), waitingText(state)) << name;
        if (!waitingText(state).isEmpty())
            QTest::mouseClick(popover.header()->waitingLine(), Qt::LeftButton);
    }
    EXPECT_EQ(actions.wentTo, std::vector<qint64>{8}) << "the waiting line goes to the session";
    QTest::mouseClick(popover.openControlPanelButton(), Qt::LeftButton);
    EXPECT_EQ(actions.openControlPanelCalls, 1);
}

} // namespace
} // namespace brenvik
