// Which session a notice's default action takes the user to.
#include "notify/NoticeTarget.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

ProcessMatch session(qint64 pid, ProcessActivityStatus status) {
    ProcessMatch match;
    match.pid = pid;
    match.status = status;
    return match;
}

TEST(NoticeTarget, TheFirstThatWaitsElseTheFirstStillThere) {
    using enum ProcessActivityStatus;
    const QList<ProcessMatch> now{session(1, idle), session(2, waiting), session(3, running),
                                  session(4, waiting)};
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
