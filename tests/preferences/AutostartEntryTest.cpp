#include "preferences/AutostartEntry.h"

#include <QDir>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(DesktopEntryExec, WrittenValuesParseBackExactly) {
    // The value as written, where it is checked exactly; else only the round trip.
    const std::tuple<const char*, QStringList, QString> cases[] = {
        {"nothing reserved", {u"/usr/bin/brenvik"_s}, u"/usr/bin/brenvik"_s},
        {"blank quoted", {u"/a b/x"_s}, u"\"/a b/x\""_s},
        {"percent doubled without quotes", {u"/a%b"_s}, u"/a%%b"_s},
        {"dollar escaped in quotes", {u"/a$b"_s}, u"\"/a\\\\$b\""_s},
        {"backslash escaped twice", {u"/a\\b"_s}, u"\"/a\\\\\\\\b\""_s},
        {"everything", {u"/opt/a b\"c'd%e$f\\g`h;i&j|k<l>m~n*o?p#q(r)s\tt/%f%%${x}"_s}, {}},
        {"line break", {u"/opt/two\nlines/brenvik"_s}, {}},
        {"several arguments", {u"/usr/bin/brenvik"_s, u"--flag"_s, u""_s, u"a b"_s}, {}},
        {"non-ASCII", {u"/opt/Brenvik \u00e6\u00f8\u00e5 \U0001F600/brenvik"_s}, {}},
    };
    for (const auto& [name, arguments, written] : cases) {
        const QString value = desktopEntryExecValue(arguments);
        EXPECT_FALSE(value.contains(u'\n')) << name;
        if (!written.isEmpty()) {
            EXPECT_EQ(value, written) << name;
        }
        EXPECT_EQ(parseDesktopEntryExecValue(value), arguments)
            << name << ": " << qPrintable(value);
    }
}

TEST(DesktopEntryExec, ParsesWhatOtherToolsWrite) {
    const std::tuple<const char*, QString, std::optional<QStringList>> cases[] = {
        {"field code dropped", u"brenvik %U"_s, QStringList{u"brenvik"_s}},
        {"string-level blank inside quotes", u"\"/a\\sb\""_s, QStringList{u"/a b"_s}},
        {"extra blanks", u"  brenvik   --x  "_s, QStringList{u"brenvik"_s, u"--x"_s}},
        {"open quote", u"\"/a b"_s, std::nullopt},
    };
    for (const auto& [name, value, arguments] : cases)
        EXPECT_EQ(parseDesktopEntryExecValue(value), arguments) << name;
}

TEST(AutostartEntry, DefaultDirectoryHonoursOnlyAnAbsoluteConfigHome) {
    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    const QString fallback = QDir::homePath() + u"/.config/autostart"_s;
    qputenv("XDG_CONFIG_HOME", "/somewhere/config");
    EXPECT_EQ(AutostartEntry::defaultDirectory(), u"/somewhere/config/autostart"_s);
    qputenv("XDG_CONFIG_HOME", "relative/config"); // as good as unset
    EXPECT_EQ(AutostartEntry::defaultDirectory(), fallback);
    qputenv("XDG_CONFIG_HOME", saved);
}

} // namespace
} // namespace brenvik
