#include "views/MenuPopoverView.h"

#include "ViewTestSupport.h"
#include "views/StatusViews.h"
#include "views/ViewStyle.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;
using namespace brenvik::test;

TEST(MenuPopoverView, HeaderFollowsTheMonitorAndTheButtonOpensThePanel) {
    ScriptedMonitor scripted;
    RecordingActions actions;
    MenuPopoverView popover(scripted.monitor, actions);
    popover.adjustSize();
    popover.show();
    EXPECT_EQ(popover.width(), 300);

    struct Case {
        const char* name;
        std::function<bool()> reach;
        NamedColor color;
        QString badge;
    };
    const Case cases[] = {
        {"before the first refresh", [] { return true; }, NamedColor::green, QString()},
        {"one running", [&] { return scripted.refreshWith({group(7, u"codex"_s, 30.0)}); },
         NamedColor::yellow, u"1"_s},
        {"failure", [&] { return scripted.failWith(u"ps: not found"_s); }, NamedColor::red, u"!"_s},
        {"nothing found", [&] { return scripted.refreshWith({}); }, NamedColor::green, QString()},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(c.reach()) << c.name;
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        EXPECT_EQ(popover.header()->stateColor(), c.color) << c.name;
        EXPECT_EQ(popover.header()->badgeText(), c.badge) << c.name;
        EXPECT_EQ(popover.header()->summaryText(), scripted.monitor.summary()) << c.name;
        QTest::mouseClick(popover.openControlPanelButton(), Qt::LeftButton);
    }
    EXPECT_EQ(actions.openControlPanelCalls, 4);
}

} // namespace
} // namespace brenvik
