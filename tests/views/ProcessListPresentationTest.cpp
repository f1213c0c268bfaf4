#include "views/ProcessListPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(ProcessListPresentation, PlaceholderTakesTheFirstRuleThatApplies) {
    const QDateTime someTime = QDateTime::fromSecsSinceEpoch(1'700'000'000);
    const QString failed = u"No process list available while detection is in an error state. "_s;
    using Case = std::tuple<const char*, std::optional<QString>, std::optional<QDateTime>, QString>;
    const Case cases[] = {
        {"error after a refresh", u"ps exited with status 1"_s, someTime,
         failed + u"ps exited with status 1"_s},
        {"error wins over checking", u"boom"_s, std::nullopt, failed + u"boom"_s},
        {"empty error text still says so", u""_s, someTime, failed},
        // One ellipsis character, not three dots.
        {"before the first refresh", std::nullopt, std::nullopt,
         u"Checking the local process list\u2026"_s},
        {"refreshed, nothing found", std::nullopt, someTime,
         u"No matching Codex CLI processes found."_s},
    };
    for (const auto& [name, lastError, lastUpdated, expected] : cases)
        EXPECT_EQ(processListPlaceholder(lastError, lastUpdated), expected) << name;
}

TEST(ProcessListPresentation, FormFollowsTheNumberOfMatches) {
    using enum ProcessListForm;
    const std::pair<qsizetype, ProcessListForm> cases[] = {
        {-1, placeholder}, {0, placeholder},   {1, plainStack},
        {3, plainStack},   {4, scrollingList}, {1000, scrollingList},
    };
    for (const auto& [count, form] : cases)
        EXPECT_EQ(processListForm(count), form) << "n = " << count;
}

} // namespace
} // namespace brenvik
