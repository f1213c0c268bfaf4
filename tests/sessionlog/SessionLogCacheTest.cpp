#include "sessionlog/SessionLogCache.h"

#include "SessionLogTestSupport.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

using namespace test;

TEST(SessionLogCache, FollowsEachLogAndForgetsTheUnreferenced) {
    const LogFile first, second;
    first.append(sessionMeta(0) + taskStarted(1));
    second.append(sessionMeta(0) + taskStarted(1) + taskComplete(2));
    SessionLogCache cache;
    EXPECT_EQ(cache.stateOf(first.path()).phase, TurnPhase::running);
    EXPECT_EQ(cache.stateOf(second.path()).phase, TurnPhase::idle);
    first.append(toolCall(2, "c1"));
    EXPECT_EQ(cache.stateOf(first.path()).phase, TurnPhase::awaitingToolOutput);

    cache.retainOnly({second.path()});
    EXPECT_EQ(cache.size(), 1);
}

} // namespace
} // namespace brenvik
