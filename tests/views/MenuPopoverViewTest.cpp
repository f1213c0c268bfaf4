#include "views/MenuPopoverView.h"

#include "ViewTestSupport.h"
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

    // The waiting line names the project; nothing else changes while none waits.
    auto waits = group(8, u"codex"_s);
    waits.cwd = QDir::homePath() + u"/projects/brenvik"_s;
    const QString none;
    const std::tuple<const char*, std::function<bool()>, NamedColor, QString, QString> cases[] = {
        {"before the first refresh", [] { return true; }, NamedColor::green, QString(), none},
        {"one running, one waiting",
         [&] {
             return scripted.refreshWith({group(7, u"codex"_s, 30.0), waits},
                                         {std::nullopt, waitingLog(at(-5000))});
         },
         NamedColor::violet, u"2"_s, u"Waiting for you: brenvik"_s},
        {"failure", [&] { return scripted.failWith(u"ps: not found"_s); }, NamedColor::red, u"!"_s,
         none},
    };
    for (const auto& [name, reach, color, badge, waiting] : cases) {
        ASSERT_TRUE(reach()) << name;
        settle();
        EXPECT_EQ(popover.header()->stateColor(), color) << name;
        EXPECT_EQ(popover.header()->badgeText(), badge) << name;
        EXPECT_EQ(popover.header()->summaryText(), scripted.monitor.summary()) << name;
        EXPECT_EQ(popover.header()->waitingText(), waiting) << name;
        if (!waiting.isEmpty()) {
            QTest::mouseClick(popover.header()->waitingLine(), Qt::LeftButton);
            EXPECT_EQ(actions.wentTo, std::vector<qint64>{8}) << name << ": goes to the session";
        }
    }
    QTest::mouseClick(popover.openControlPanelButton(), Qt::LeftButton);
    EXPECT_EQ(actions.openControlPanelCalls, 1);
}

} // namespace
} // namespace brenvik
