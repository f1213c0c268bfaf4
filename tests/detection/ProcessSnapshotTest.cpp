#include "detection/ProcessSnapshot.h"

#include "DetectionTestSupport.h"

#include <gtest/gtest.h>
#include <limits>

namespace brenvik {
namespace {

using test::row;

TEST(ProcessLineParsing, Cases) {
    const struct {
        const char* name;
        const char16_t* line;
        std::optional<ObservedProcess> expected;
    } cases[] = {
        {"columns and inner white space kept",
         u"  501   1 Ss     0.0   0:01.23 /usr/local/bin/codex  exec --help  ",
         row(501, 1, u"/usr/local/bin/codex  exec --help", 0.0, 1.23, u"Ss")},
        {"tabs and Unicode spaces separate, NBSP trimmed",
         u"7\t\u3000 3 R+\u20031.5 1:00 a\tb\u00a0", row(7, 3, u"a\tb", 1.5, 60, u"R+")},
        {"five columns and trailing blanks", u"501 1 Ss 0.0 0:01.23   ", std::nullopt},
        {"blank line", u" \t ", std::nullopt},
        {"pid not an integer", u"abc 1 S 0.0 0:00.00 x", std::nullopt},
        {"ppid not an integer", u"1 1.0 S 0.0 0:00.00 x", std::nullopt},
        {"pid with a trailing letter", u"12a 1 S 0.0 0:00.00 x", std::nullopt},
        {"pid with two signs", u"+-12 1 S 0.0 0:00.00 x", std::nullopt},
        {"non-ASCII digits", u"\u0661\u0662 1 S 0.0 0:00.00 x", std::nullopt},
        {"pid beyond 64 bits", u"9223372036854775808 1 S 0.0 0:00.00 x", std::nullopt},
        {"ppid below 64 bits", u"1 -9223372036854775809 S 0.0 0:00.00 x", std::nullopt},
        {"signed extremes", u"+9223372036854775807 -9223372036854775808 S 0.0 0 x",
         row(std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::min(), u"x")},
        {"cpu not a number counts 0", u"12 1 S n/a 0:00.00 x", row(12, 1, u"x")},
        {"cpu with decimal comma counts 0", u"12 1 S 0,5 0:00.00 x", row(12, 1, u"x")},
        {"cpu with exponent and sign", u"12 1 S +1e2 0:00.00 x", row(12, 1, u"x", 100)},
        {"cpu beyond double's range", u"12 1 S 1e400 -1e-400 x",
         row(12, 1, u"x", std::numeric_limits<double>::infinity(), 0)},
        {"state taken unchanged", u"12 1 ?<sl 0 0 x", row(12, 1, u"x", 0, 0, u"?<sl")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseProcessLine(QString::fromUtf16(c.line)), c.expected) << c.name;
}

TEST(CPUTimeParsing, ClockForms) {
    const struct {
        const char16_t* text;
        double seconds;
    } cases[] = {
        {u"0:00.52", 0.52},
        {u"12:34.56", 754.56},
        {u"1:02:03", 3723},
        {u"1-02:03:04", 93784},
        {u"3-00:00", 259200},
        {u"7", 7},
        {u" \t7\n", 7},
        {u":", 0},
        {u"", 0},

    };
    for (const auto& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        EXPECT_DOUBLE_EQ(parseCPUTime(text), c.seconds) << text.toStdString();
    }
}

} // namespace
} // namespace brenvik
