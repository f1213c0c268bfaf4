#include "preferences/AutostartEntry.h"

#include "preferences/LaunchAtLoginController.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
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
        {"blanks", {u"/home/ann/My Apps/Brenvik App/brenvik"_s}, {}},
        {"quotes", {u"/opt/\"quoted\" ann's/brenvik"_s}, {}},
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

class Autostart : public ::testing::Test {
protected:
    Autostart() { QFile(m_program).open(QIODevice::WriteOnly); }
    AutostartEntry entry(const QString& executable, const QStringList& temporaryRoots = {}) const {
        return AutostartEntry({m_dir.filePath(u"autostart"_s), executable, temporaryRoots});
    }

    QTemporaryDir m_dir;
    const QString m_program = m_dir.filePath(u"brenvik"_s);
};

TEST_F(Autostart, DisabledEntriesReadAsOff) {
    const auto entryWith = [](const QByteArray& lines) {
        return "[Desktop Entry]\nType=Application\nName=Brenvik\nExec=/usr/bin/brenvik\n" + lines;
    };
    const std::tuple<const char*, QByteArray, bool> cases[] = {
        {"plain entry", entryWith(""), true},
        {"Hidden=true", entryWith("Hidden=true\n"), false},
        {"GNOME disabled", entryWith("X-GNOME-Autostart-enabled=false\n"), false},
        {"blanks around =", entryWith("Hidden = true\n"), false},
        {"keys are case-sensitive", entryWith("hidden=true\nx-gnome-autostart-enabled=false\n"),
         true},
        {"values are case-sensitive", entryWith("Hidden=True\n"), true},
        {"other group ignored", entryWith("[Desktop Action x]\nHidden=true\n"), true},
        {"comment ignored", entryWith("#Hidden=true\n"), true},
        {"CRLF line ends", "[Desktop Entry]\r\nHidden=true\r\n", false},
    };
    const AutostartEntry ours = entry(m_program);
    ASSERT_TRUE(QDir().mkpath(m_dir.filePath(u"autostart"_s)));
    for (const auto& [name, contents, active] : cases) {
        QFile file(ours.filePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        file.close();
        EXPECT_EQ(LaunchAtLoginController(ours).status(),
                  active ? LaunchAtLoginStatus::enabled : LaunchAtLoginStatus::notRegistered)
            << name;
    }
}

TEST_F(Autostart, OnlyAStableExecutableCanRegister) {
    // Name, executable, temporary roots, and what the refusal names (none: registers).
    const std::tuple<const char*, QString, QStringList, const char*> cases[] = {
        {"existing file", m_program, {}, nullptr},
        {"empty path", u""_s, {}, "is unknown"},
        {"relative path", u"brenvik"_s, {}, "is unknown"},
        {"missing file", m_dir.filePath(u"gone"_s), {}, "gone was moved or removed"},
        {"replaced while running", m_program + u" (deleted)"_s, {}, "brenvik was moved or removed"},
        {"a directory", m_dir.path(), {}, "moved or removed"},
        {"inside a temporary root", m_program, {m_dir.path()}, "temporary location"},
        {"root is only a prefix", m_program, {m_dir.path() + u"x"_s}, nullptr},
    };
    for (const auto& [name, executable, temporaryRoots, reason] : cases) {
        const bool stable = reason == nullptr;
        LaunchAtLoginController controller(entry(executable, temporaryRoots));
        EXPECT_EQ(controller.status(),
                  stable ? LaunchAtLoginStatus::notRegistered : LaunchAtLoginStatus::notFound)
            << name;
        controller.setEnabled(true);
        const QString error = controller.lastError().value_or(QString());
        EXPECT_EQ(controller.lastError().has_value(), !stable) << name;
        EXPECT_TRUE(stable || error.contains(QString::fromUtf8(reason)))
            << name << ": " << error.toStdString();
        EXPECT_EQ(QFile::exists(controller.entry().filePath()), stable) << name;
        controller.setEnabled(false);
    }
}

TEST(AutostartEntry, DefaultDirectoryHonoursOnlyAnAbsoluteConfigHome) {
    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    const QString fallback = QDir::homePath() + u"/.config/autostart"_s;
    qputenv("XDG_CONFIG_HOME", "/somewhere/config");
    EXPECT_EQ(AutostartEntry::defaultDirectory(), u"/somewhere/config/autostart"_s);
    qputenv("XDG_CONFIG_HOME", "relative/config");
    EXPECT_EQ(AutostartEntry::defaultDirectory(), fallback);
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(AutostartEntry::defaultDirectory(), fallback);
    qputenv("XDG_CONFIG_HOME", saved);
}

} // namespace
} // namespace brenvik
