// The two preference controllers: taskbar visibility, stored in the settings
// file, and launch at login, an XDG autostart entry (and that entry's own
// quoting and folder).
#include "preferences/AppVisibilityController.h"
#include "preferences/AutostartEntry.h"
#include "preferences/LaunchAtLoginController.h"
#include "tests/views/ViewTestSupport.h"

#include <QDir>
#include <QRegularExpression>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

// A private folder for the settings file, the autostart folder and a program
// file (which counts as stable: no temporary roots are named).
class Preferences : public ::testing::Test {
protected:
    Preferences() { write(m_program, {}); }
    static void write(const QString& path, const QByteArray& contents) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
        file.write(contents);
    }
    AutostartEntry entry(const QString& executable, const QStringList& temporaryRoots = {}) const {
        return AutostartEntry({m_autostart, executable, temporaryRoots});
    }

    QTemporaryDir m_dir;
    const QString m_settings = m_dir.filePath(u"Brenvik.conf"_s);
    const QString m_autostart = m_dir.filePath(u"autostart"_s);
    const QString m_program = m_dir.filePath(u"brenvik"_s);
    test::RecordingPolicy m_policy;
};

// What either file holds reads as on or off, and reading applies nothing.
// The start-up test reads an absent, a true and a false stored value.
TEST_F(Preferences, WhatIsOnDiskReadsAsOnOrOff) {
    const auto entryWith = [](const QByteArray& lines) {
        return "[Desktop Entry]\nType=Application\nName=Brenvik\nExec=/usr/bin/brenvik\n" + lines;
    };
    const QString entryFile = entry(m_program).filePath();
    const std::tuple<const char*, QString, QByteArray, bool> cases[] = {
        {"stored false", m_settings, "[General]\nshowDockIcon=false\n", false},
        {"not a Boolean", m_settings, "[General]\nshowDockIcon=banana\n", true},
        {"corrupt settings", m_settings, QByteArray("\0\xff[[[=\n\x01showDockIcon", 20), true},
        {"Hidden=true", entryFile, entryWith("Hidden=true\n"), false},
        {"GNOME disabled", entryFile, entryWith("X-GNOME-Autostart-enabled=false\n"), false},
        {"blanks around =", entryFile, entryWith("Hidden = true\n"), false},
        {"keys are case-sensitive", entryFile,
         entryWith("hidden=true\nx-gnome-autostart-enabled=false\n"), true},
        {"values are case-sensitive", entryFile, entryWith("Hidden=True\n"), true},
        {"other group ignored", entryFile, entryWith("[Desktop Action x]\nHidden=true\n"), true},
        {"comment ignored", entryFile, entryWith("#Hidden=true\n"), true},
        {"CRLF line ends", entryFile, "[Desktop Entry]\r\nHidden=true\r\n", false},
    };
    ASSERT_TRUE(QDir().mkpath(m_autostart));
    for (const auto& [name, path, contents, on] : cases) {
        write(path, contents);
        StoredPreferences preferences(m_settings);
        const AppVisibilityController dock(m_policy, preferences);
        const LaunchAtLoginController login(entry(m_program));
        EXPECT_EQ(path == m_settings ? dock.showDockIcon()
                                     : login.status() == LaunchAtLoginStatus::enabled,
                  on)
            << name;
        EXPECT_EQ(dock.lastError(), std::nullopt) << name;
    }
    EXPECT_TRUE(m_policy.requested.isEmpty());
}

// A folder where the settings file should be, a file where the autostart
// folder should be: neither lets root through. Each controller says what
// failed (the preference views' test shows the text, the status re-read,
// and the next success clearing it).
TEST_F(Preferences, AFailedWriteSaysWhy) {
    ASSERT_TRUE(QDir().mkpath(m_settings));
    write(m_autostart, {});
    StoredPreferences preferences(m_settings);
    AppVisibilityController dock(m_policy, preferences);
    EXPECT_TRUE(dock.showDockIcon()) << "unreadable settings read as shown";
    LaunchAtLoginController login(entry(m_program));
    dock.setShowDockIcon(false);
    login.setEnabled(true);
    // The choice holds for the session all the same.
    EXPECT_FALSE(dock.showDockIcon());
    EXPECT_EQ(m_policy.requested.last(), ActivationPolicyKind::accessory);
    EXPECT_TRUE(dock.lastError().value_or(QString()).contains(m_settings))
        << qPrintable(dock.lastError().value_or(u"none"_s));
    EXPECT_TRUE(
        login.lastError().value_or(QString()).contains(u"Not a directory"_s, Qt::CaseInsensitive))
        << qPrintable(login.lastError().value_or(u"none"_s));
}

TEST_F(Preferences, EachDockAssignmentStoresAppliesAndActivatesWhenShown) {
    using enum ActivationPolicyKind;
    // Name, value, whether the desktop accepts, the policy asked for, the
    // running total of activations, and whether the refusal shows.
    const std::tuple<const char*, bool, bool, ActivationPolicyKind, int, bool> steps[] = {
        {"hide", false, true, accessory, 0, false},
        {"show", true, true, regular, 1, false},
        {"show again", true, true, regular, 2, false},
        {"refused hide", false, false, accessory, 2, true},
        {"refused show", true, false, regular, 2, true},
    };
    StoredPreferences preferences(m_settings);
    AppVisibilityController controller(m_policy, preferences);
    QSignalSpy shownSpy(&controller, &AppVisibilityController::showDockIconChanged);
    int count = 0;
    for (const auto& [name, value, accept, policy, activations, refused] : steps) {
        ++count;
        m_policy.accept = accept;
        write(m_settings, "[General]\nshowDockIcon=unset\n");
        controller.setShowDockIcon(value);
        // Published, applied and written every time, refused or not.
        EXPECT_EQ(shownSpy.count(), count) << name;
        EXPECT_EQ(m_policy.requested.size(), count) << name;
        EXPECT_EQ(controller.showDockIcon(), value) << name;
        EXPECT_EQ(m_policy.requested.last(), policy) << name;
        EXPECT_EQ(m_policy.activations, activations) << name;
        EXPECT_EQ(controller.lastError(),
                  refused ? std::optional(AppVisibilityController::kRefusalMessage.toString())
                          : std::nullopt)
            << name;
        EXPECT_EQ(QSettings(m_settings, QSettings::IniFormat).value(u"showDockIcon"_s).toBool(),
                  value)
            << name;
    }
}

TEST(TaskbarPolicy, HidingRefusedWithoutX11) {
    // The tests run on the offscreen platform, as Wayland: every window shows.
    TaskbarActivationPolicy policy;
    EXPECT_FALSE(policy.desktopCanHide());
    EXPECT_FALSE(policy.setPolicy(ActivationPolicyKind::accessory));
    EXPECT_TRUE(policy.setPolicy(ActivationPolicyKind::regular)) << "showing holds";
    EXPECT_FALSE(policy.setPolicy(ActivationPolicyKind::accessory)) << "after showing";
}

TEST_F(Preferences, OnlyAStableExecutableCanRegister) {
    // Name, executable, temporary roots, and what the refusal names (none: registers).
    const std::tuple<const char*, QString, QStringList, const char*> cases[] = {
        {"relative path", u"brenvik"_s, {}, "is unknown"},
        {"missing file", m_dir.filePath(u"gone"_s), {}, "gone was moved or removed"},
        {"a folder", m_autostart + u"/.."_s, {}, "was moved or removed"},
        {"replaced while running", m_program + u" (deleted)"_s, {}, "brenvik was moved or removed"},
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

TEST_F(Preferences, RegisterWritesTheEntryAndUnregisterRemovesIt) {
    // The Exec= round trip of awkward paths is desktopEntryExecValue's test.
    LaunchAtLoginController controller(entry(m_program));
    const QString path = m_autostart + u"/brenvik.desktop"_s;
    controller.setEnabled(true);
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::enabled);
    EXPECT_EQ(controller.lastError(), std::nullopt);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray contents = file.readAll();
    for (const char* line :
         {"[Desktop Entry]\n", "Type=Application\n", "Name=Brenvik\n", "Icon=brenvik\n",
          "Terminal=false\n", "X-GNOME-Autostart-enabled=true\n", "X-GNOME-Autostart-Delay=3\n",
          "X-KDE-autostart-after=panel\n"})
        EXPECT_TRUE(contents.contains(line)) << line;
    const QRegularExpression execLine(u"^Exec=(.*)$"_s, QRegularExpression::MultilineOption);
    EXPECT_EQ(parseDesktopEntryExecValue(execLine.match(QString::fromUtf8(contents)).captured(1)),
              (QStringList{m_program, u"--autostart"_s}));

    controller.setEnabled(false);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notRegistered);
    controller.setEnabled(false); // removing a missing entry is no failure
    EXPECT_EQ(controller.lastError(), std::nullopt);
}

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
