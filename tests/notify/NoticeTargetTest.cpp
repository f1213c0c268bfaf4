// Which session a notice's default action takes the user to.
#include "notify/NoticeTarget.h"

#include "../monitor/Matches.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

TEST(NoticeTarget, TheFirstThatWaitsElseTheFirstStillThere) {
    using enum ProcessActivityStatus;
    using test::match;
    const QList<ProcessMatch> now{match(1, idle), match(2, waiting), match(3, running),
                                  match(4, waiting)};
    const std::tuple<const char*, QList<qint64>, std::optional<qint64>> cases[] = {
        {"the first named that waits, not the first in the list", {4, 2}, 4},
        {"a waiting one after others", {1, 3, 2}, 2},
        {"none waits: the first named", {3, 1}, 3},
        {"the first named ended: the next still there", {9, 1}, 1},
        {"all ended", {8, 9}, std::nullopt},
        {"a notice it no longer knows", {}, std::nullopt},
    };
    for (const auto& [name, named, expected] : cases)
        EXPECT_EQ(noticeTarget(named, now), expected) << name;
}

} // namespace
} // namespace brenvik
