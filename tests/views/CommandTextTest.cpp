#include "views/CommandText.h"

#include <QTextBoundaryFinder>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

qsizetype graphemeCount(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1)
        ++count;
    return count;
}

QString repeated(const QString& unit, qsizetype times) {
    QString text;
    for (qsizetype i = 0; i < times; ++i)
        text += unit;
    return text;
}

TEST(CommandText, ShortensByUserPerceivedCharacters) {
    const QString eAcute = u"e\u0301"_s; // e + combining acute: one character
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s; // one emoji
    const QString flag = u"\U0001F1F3\U0001F1F4"_s; // regional indicator pair
    struct Case {
        const char* name;
        QString command;
        QString expected;
    };
    const Case cases[] = {
        {"empty", u""_s, u""_s},
        {"short", u"codex --model o3"_s, u"codex --model o3"_s},
        {"110 shown whole", repeated(u"a"_s, 110), repeated(u"a"_s, 110)},
        {"111 cut to 107 and three dots", repeated(u"a"_s, 111), repeated(u"a"_s, 107) + u"..."_s},
        {"500 cut the same", repeated(u"b"_s, 500), repeated(u"b"_s, 107) + u"..."_s},
        {"110 combining marks shown whole", repeated(eAcute, 110), repeated(eAcute, 110)},
        {"111 combining marks cut between clusters", repeated(eAcute, 111),
         repeated(eAcute, 107) + u"..."_s},
        {"110 family emoji shown whole", repeated(family, 110), repeated(family, 110)},
        {"111 flags cut between pairs", repeated(flag, 111), repeated(flag, 107) + u"..."_s},
        {"leading blanks and trailing line break", u"   codex exec\n"_s, u"codex exec"_s},
        {"tabs and CRLF", u"\t\tcodex\r\n"_s, u"codex"_s},
        {"inner blanks kept", u" node  codex.js  "_s, u"node  codex.js"_s},
        {"trimmed before counting", u"  "_s + repeated(u"c"_s, 110) + u"\n"_s,
         repeated(u"c"_s, 110)},
    };
    for (const Case& c : cases) {
        const QString shown = shownCommand(c.command);
        EXPECT_EQ(shown, c.expected) << c.name;
        EXPECT_LE(graphemeCount(shown), kShownCommandLimit) << c.name;
    }
}

} // namespace
} // namespace brenvik
