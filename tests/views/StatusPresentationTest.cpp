#include "views/StatusPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(StatusPresentation, ColourAndBadgeFollowTheRunState) {
    using enum StateColor;
    const std::tuple<const char*, CodexRunState, StateColor, QString> cases[] = {
        {"three idle", CodexRunState::observed(3, 0, 3), green, u"3"_s},
        {"one of three running", CodexRunState::observed(3, 1, 2), yellow, u"3"_s},
        {"negative running counts as none", CodexRunState::observed(2, -1, 3), green, u"2"_s},
        {"99 groups", CodexRunState::observed(99, 0, 99), green, u"99"_s},
        {"100 groups", CodexRunState::observed(100, 5, 95), yellow, u"99+"_s},
        {"thousands, no separators", CodexRunState::observed(12345, 0, 0), green, u"99+"_s},
        {"error", CodexRunState::error(u"ps failed"_s), red, u"!"_s},
        {"nothing found", CodexRunState::idle(), green, QString()},
    };
    for (const auto& [name, state, color, badge] : cases) {
        EXPECT_EQ(stateColor(state), color) << name;
        EXPECT_EQ(badgeText(state), badge) << name;
    }
}

} // namespace
} // namespace brenvik
