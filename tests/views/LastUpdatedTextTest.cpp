#include "views/LastUpdatedText.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(LastUpdatedText, ChecksUntilTheFirstRefreshThenShowsTheTimeOfDay) {
    const QDateTime afternoon(QDate(2026, 11, 23), QTime(14, 5, 30));
    struct Case {
        const char* name;
        std::optional<QDateTime> lastUpdated;
        QLocale locale;
        QString expected;
    };
    const Case cases[] = {
        {"no refresh yet", std::nullopt, QLocale(QLocale::English, QLocale::UnitedStates),
         u"Checking now"_s},
        {"12-hour clock", afternoon, QLocale(QLocale::English, QLocale::UnitedStates),
         u"Updated 2:05\u202fPM"_s},
        {"24-hour clock", afternoon, QLocale(QLocale::German, QLocale::Germany),
         u"Updated 14:05"_s},
    };
    for (const Case& c : cases) {
        QString text = lastUpdatedText(c.lastUpdated, c.locale);
        // Locale data differ in the blank before AM/PM; the words are what count.
        text.replace(u' ', u'\u202f');
        QString expected = c.expected;
        expected.replace(u' ', u'\u202f');
        EXPECT_EQ(text, expected) << c.name;
        EXPECT_FALSE(text.contains(u"2026"_s)) << c.name;
    }
}

} // namespace
} // namespace brenvik
