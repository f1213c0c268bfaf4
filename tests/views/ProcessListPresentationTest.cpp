#include "views/ProcessListPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

const QDateTime kSomeTime = QDateTime::fromSecsSinceEpoch(1'700'000'000);

TEST(ProcessListPresentation, PlaceholderTakesTheFirstRuleThatApplies) {
    struct Case {
        const char* name;
        std::optional<QString> lastError;
        std::optional<QDateTime> lastUpdated;
        QString expected;
    };
    const Case cases[] = {
        {"error after a refresh", u"ps exited with status 1"_s, kSomeTime,
         u"No process list available while detection is in an error state. ps exited with "
         u"status 1"_s},
        {"error wins over checking", u"boom"_s, std::nullopt,
         u"No process list available while detection is in an error state. boom"_s},
        {"empty error text still says so", u""_s, kSomeTime,
         u"No process list available while detection is in an error state. "_s},
        {"before the first refresh", std::nullopt, std::nullopt,
         u"Checking the local process list\u2026"_s},
        {"refreshed, nothing found", std::nullopt, kSomeTime,
         u"No matching Codex CLI processes found."_s},
    };
    for (const Case& c : cases)
        EXPECT_EQ(processListPlaceholder(c.lastError, c.lastUpdated), c.expected) << c.name;
}

TEST(ProcessListPresentation, CheckingTextEndsInOneEllipsisCharacter) {
    const QString text = processListPlaceholder(std::nullopt, std::nullopt);
    EXPECT_EQ(text.back(), QChar(0x2026));
    EXPECT_FALSE(text.contains(u"..."_s));
}

TEST(ProcessListPresentation, FormFollowsTheNumberOfMatches) {
    struct Case {
        qsizetype count;
        ProcessListForm form;
    };
    const Case cases[] = {
        {-1, ProcessListForm::placeholder},  {0, ProcessListForm::placeholder},
        {1, ProcessListForm::plainStack},    {2, ProcessListForm::plainStack},
        {3, ProcessListForm::plainStack},    {4, ProcessListForm::scrollingList},
        {5, ProcessListForm::scrollingList}, {1000, ProcessListForm::scrollingList},
    };
    for (const Case& c : cases)
        EXPECT_EQ(processListForm(c.count), c.form) << "n = " << c.count;
}

} // namespace
} // namespace brenvik
