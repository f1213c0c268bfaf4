#include "views/StatusPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

struct StateCase {
    const char* name;
    CodexRunState state;
    StateColor color;
    QString badge;
};

TEST(StatusPresentation, ColourAndBadgeFollowTheRunState) {
    const StateCase cases[] = {
        {"three idle", CodexRunState::observed(3, 0, 3), StateColor::green, u"3"_s},
        {"one of three running", CodexRunState::observed(3, 1, 2), StateColor::yellow, u"3"_s},
        {"negative running counts as none", CodexRunState::observed(2, -1, 3), StateColor::green,
         u"2"_s},
        {"99 groups", CodexRunState::observed(99, 0, 99), StateColor::green, u"99"_s},
        {"100 groups", CodexRunState::observed(100, 5, 95), StateColor::yellow, u"99+"_s},
        {"thousands, no separators", CodexRunState::observed(12345, 0, 0), StateColor::green,
         u"99+"_s},
        {"error", CodexRunState::error(u"ps failed"_s), StateColor::red, u"!"_s},
        {"nothing found", CodexRunState::idle(), StateColor::green, QString()},
    };
    for (const StateCase& c : cases) {
        EXPECT_EQ(stateColor(c.state), c.color) << c.name;
        EXPECT_EQ(badgeText(c.state), c.badge) << c.name;
    }
}

} // namespace
} // namespace brenvik
