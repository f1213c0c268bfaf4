#include "views/LastUpdatedText.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(LastUpdatedText, ChecksUntilTheFirstRefreshThenShowsTheTimeOfDay) {
    const QDateTime afternoon(QDate(2026, 11, 23), QTime(14, 5, 30));
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const std::tuple<const char*, std::optional<QDateTime>, QLocale, QString> cases[] = {
        {"no refresh yet", std::nullopt, us, u"Checking now"_s},
        {"12-hour clock", afternoon, us, u"Updated 2:05\u202fPM"_s},
        {"24-hour clock", afternoon, QLocale(QLocale::German, QLocale::Germany),
         u"Updated 14:05"_s},
    };
    for (const auto& [name, lastUpdated, locale, expected] : cases) {
        // Locale data differ in the blank before AM/PM; the words are what count.
        const QString text = lastUpdatedText(lastUpdated, locale).replace(u' ', u'\u202f');
        EXPECT_EQ(text, QString(expected).replace(u' ', u'\u202f')) << name;
    }
}

} // namespace
} // namespace brenvik
