#include "views/StatusViews.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(StatusHeaderView, DotBadgeAndSummaryFollowTheState) {
    struct Case {
        const char* name;
        CodexRunState state;
        NamedColor color;
        QString badge;
    };
    const Case cases[] = {
        {"three idle: green 3", CodexRunState::observed(3, 0, 3), NamedColor::green, u"3"_s},
        {"one running: yellow 3", CodexRunState::observed(3, 1, 2), NamedColor::yellow, u"3"_s},
        {"99", CodexRunState::observed(99, 0, 99), NamedColor::green, u"99"_s},
        {"100", CodexRunState::observed(100, 0, 100), NamedColor::green, u"99+"_s},
        {"error: red !", CodexRunState::error(u"ps failed"_s), NamedColor::red, u"!"_s},
        {"nothing found: green, no badge", CodexRunState::idle(), NamedColor::green, QString()},
    };
    StatusHeaderView header(CodexRunState::idle(), QString());
    for (const Case& c : cases) {
        header.setState(c.state, u"summary of "_s + QString::fromUtf8(c.name));
        EXPECT_EQ(header.stateColor(), c.color) << c.name;
        EXPECT_EQ(header.badgeText(), c.badge) << c.name;
        EXPECT_EQ(header.summaryText(), u"summary of "_s + QString::fromUtf8(c.name)) << c.name;
    }
}

} // namespace
} // namespace brenvik
