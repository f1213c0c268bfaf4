#include "views/CommandText.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(CommandText, TrimmedAndShortenedByUserPerceivedCharacters) {
    const QString a = u"a"_s;
    const QString eAcute = u"e\u0301"_s; // e + combining acute: one character
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s; // one emoji
    const QString flag = u"\U0001F1F3\U0001F1F4"_s; // regional indicator pair
    const QString dots = u"..."_s;
    const std::tuple<const char*, QString, QString> cases[] = {
        {"empty", u""_s, u""_s},
        {"110 shown whole", a.repeated(110), a.repeated(110)},
        {"111 cut to 107 and three dots", a.repeated(111), a.repeated(107) + dots},
        {"500 cut the same", a.repeated(500), a.repeated(107) + dots},
        {"110 combining marks shown whole", eAcute.repeated(110), eAcute.repeated(110)},
        {"111 combining marks cut between clusters", eAcute.repeated(111),
         eAcute.repeated(107) + dots},
        {"110 family emoji shown whole", family.repeated(110), family.repeated(110)},
        {"111 flags cut between pairs", flag.repeated(111), flag.repeated(107) + dots},
        {"blanks, tabs and line breaks trimmed", u" \t codex exec\r\n"_s, u"codex exec"_s},
        {"inner blanks kept", u" node  codex.js  "_s, u"node  codex.js"_s},
        {"trimmed before counting", u"  "_s + a.repeated(110) + u"\n"_s, a.repeated(110)},
    };
    for (const auto& [name, command, expected] : cases)
        EXPECT_EQ(shownCommand(command), expected) << name;
}

} // namespace
} // namespace brenvik
