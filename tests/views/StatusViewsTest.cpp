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

TEST(LastUpdatedLabel, ReadsCheckingUntilADateArrives) {
    LastUpdatedLabel label(std::nullopt);
    EXPECT_EQ(label.text(), u"Checking now"_s);
    label.setLastUpdated(QDateTime(QDate(2026, 1, 2), QTime(9, 41)));
    EXPECT_TRUE(label.text().startsWith(u"Updated "_s)) << qPrintable(label.text());
    EXPECT_FALSE(label.text().contains(u"2026"_s)) << qPrintable(label.text());
}

TEST(ViewStyle, SignalColoursStayDistinctFromTheBackgroundInLightAndDark) {
    QPalette light;
    light.setColor(QPalette::Window, QColor(239, 239, 239));
    light.setColor(QPalette::WindowText, Qt::black);
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(38, 38, 40));
    dark.setColor(QPalette::WindowText, QColor(236, 236, 238));
    for (const QPalette& palette : {light, dark}) {
        const bool isDark = isDarkPalette(palette);
        const qreal background = palette.color(QPalette::Window).lightnessF();
        for (NamedColor text : {NamedColor::red, NamedColor::orange, NamedColor::primary}) {
            const QColor color = namedColor(text, palette);
            const qreal lightness = color.lightnessF();
            EXPECT_GT(std::abs(lightness - background), 0.25)
                << (isDark ? "dark " : "light ") << int(text);
        }
    }
}

} // namespace
} // namespace brenvik
