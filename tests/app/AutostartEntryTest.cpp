#include "app/AutostartEntry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

QByteArray entryWith(const QByteArray& extraLines) {
    return "[Desktop Entry]\nType=Application\nName=Brenvik\nExec=/usr/bin/brenvik\n" + extraLines;
}

TEST(DesktopEntryExec, ArgumentsRoundTripExactly) {
    struct Case {
        const char* name;
        QStringList arguments;
    };
    const Case cases[] = {
        {"plain", {u"/usr/bin/brenvik"_s}},
        {"blanks", {u"/home/ann/My Apps/Brenvik App/brenvik"_s}},
        {"double quotes", {u"/opt/\"quoted\" dir/brenvik"_s}},
        {"single quote", {u"/opt/ann's/brenvik"_s}},
        {"percent", {u"/opt/100% sure/%f%%brenvik"_s}},
        {"dollar", {u"/opt/$HOME/${x}/brenvik"_s}},
        {"backslash", {u"/opt/back\\slash\\\\double/brenvik"_s}},
        {"backtick", {u"/opt/`date`/brenvik"_s}},
        {"everything", {u"/opt/a b\"c'd%e$f\\g`h;i&j|k<l>m~n*o?p#q(r)s\tt/brenvik"_s}},
        {"line break", {u"/opt/two\nlines/brenvik"_s}},
        {"several arguments", {u"/usr/bin/brenvik"_s, u"--flag"_s, u""_s, u"a b"_s}},
        {"non-ASCII", {u"/opt/Brenvik \u00e6\u00f8\u00e5 \U0001F600/brenvik"_s}},
    };
    for (const Case& c : cases) {
        const QString value = desktopEntryExecValue(c.arguments);
        EXPECT_FALSE(value.contains(u'\n')) << c.name;
        EXPECT_EQ(parseDesktopEntryExecValue(value), c.arguments)
            << c.name << ": " << qPrintable(value);
    }
}

TEST(DesktopEntryExec, QuotesByTheDesktopEntryRules) {
    struct Case {
        const char* name;
        QString argument;
        QString value;
    };
    const Case cases[] = {
        {"nothing reserved", u"/usr/bin/brenvik"_s, u"/usr/bin/brenvik"_s},
        {"blank", u"/a b/x"_s, u"\"/a b/x\""_s},
        {"percent doubled without quotes", u"/a%b"_s, u"/a%%b"_s},
        {"dollar escaped in quotes", u"/a$b"_s, u"\"/a\\\\$b\""_s},
        {"backslash escaped twice", u"/a\\b"_s, u"\"/a\\\\\\\\b\""_s},
    };
    for (const Case& c : cases)
        EXPECT_EQ(desktopEntryExecValue({c.argument}), c.value) << c.name;
}

TEST(DesktopEntryExec, ParsesWhatOtherToolsWrite) {
    struct Case {
        const char* name;
        QString value;
        std::optional<QStringList> arguments;
    };
    const Case cases[] = {
        {"field code dropped", u"brenvik %U"_s, QStringList{u"brenvik"_s}},
        {"string-level blank inside quotes", u"\"/a\\sb\""_s, QStringList{u"/a b"_s}},
        {"extra blanks", u"  brenvik   --x  "_s, QStringList{u"brenvik"_s, u"--x"_s}},
        {"open quote", u"\"/a b"_s, std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(parseDesktopEntryExecValue(c.value), c.arguments) << c.name;
}

TEST(DesktopEntryActive, DisabledEntriesReadAsOff) {
    struct Case {
        const char* name;
        QByteArray contents;
        bool active;
    };
    const Case cases[] = {
        {"plain entry", entryWith(""), true},
        {"Hidden=true", entryWith("Hidden=true\n"), false},
        {"Hidden=false", entryWith("Hidden=false\n"), true},
        {"GNOME disabled", entryWith("X-GNOME-Autostart-enabled=false\n"), false},
        {"GNOME enabled", entryWith("X-GNOME-Autostart-enabled=true\n"), true},
        {"blanks around =", entryWith("Hidden = true\n"), false},
        {"keys are case-sensitive", entryWith("hidden=true\nx-gnome-autostart-enabled=false\n"),
         true},
        {"values are case-sensitive", entryWith("Hidden=True\n"), true},
        {"other group ignored", entryWith("[Desktop Action x]\nHidden=true\n"), true},
        {"comment ignored", entryWith("#Hidden=true\n"), true},
        {"CRLF line ends", "[Desktop Entry]\r\nHidden=true\r\n", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(desktopEntryIsActive(c.contents), c.active) << c.name;
}

TEST(AutostartEntry, ExecutableMustBeStable) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString program = dir.filePath(u"brenvik"_s);
    QFile(program).open(QIODevice::WriteOnly);
    const QString autostart = dir.filePath(u"autostart"_s);
    struct Case {
        const char* name;
        QString executable;
        QStringList temporaryRoots;
        bool stable;
    };
    const Case cases[] = {
        {"existing file", program, {}, true},
        {"empty path", u""_s, {}, false},
        {"relative path", u"brenvik"_s, {}, false},
        {"missing file", dir.filePath(u"gone"_s), {}, false},
        {"a directory", dir.path(), {}, false},
        {"inside a temporary root", program, {dir.path()}, false},
        {"root is only a prefix", program, {dir.path() + u"x"_s}, true},
    };
    for (const Case& c : cases) {
        const AutostartEntry entry({autostart, c.executable, c.temporaryRoots});
        EXPECT_EQ(entry.hasStableExecutable(), c.stable) << c.name;
        EXPECT_EQ(entry.status(),
                  c.stable ? LaunchAtLoginStatus::notRegistered : LaunchAtLoginStatus::notFound)
            << c.name;
    }
}

TEST(AutostartEntry, DefaultDirectoryHonoursOnlyAnAbsoluteConfigHome) {
    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", "/somewhere/config");
    EXPECT_EQ(AutostartEntry::defaultDirectory(), u"/somewhere/config/autostart"_s);
    qputenv("XDG_CONFIG_HOME", "relative/config");
    EXPECT_EQ(AutostartEntry::defaultDirectory(), QDir::homePath() + u"/.config/autostart"_s);
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(AutostartEntry::defaultDirectory(), QDir::homePath() + u"/.config/autostart"_s);
    qputenv("XDG_CONFIG_HOME", saved);
}

} // namespace
} // namespace brenvik
