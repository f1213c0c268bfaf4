#include "preferences/LaunchAtLoginController.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

// Entries in a private autostart folder, for program files in a temporary
// folder (which counts as stable: no temporary roots are named).
class LaunchAtLogin : public ::testing::Test {
protected:
    LaunchAtLogin() { QFile(m_program).open(QIODevice::WriteOnly); }
    AutostartEntry entry(const QString& executable, const QStringList& temporaryRoots = {}) const {
        return AutostartEntry({m_autostart, executable, temporaryRoots});
    }

    QTemporaryDir m_dir;
    const QString m_autostart = m_dir.filePath(u"autostart"_s);
    const QString m_program = m_dir.filePath(u"brenvik"_s);
};

TEST_F(LaunchAtLogin, DisabledEntriesReadAsOff) {
    const auto entryWith = [](const QByteArray& lines) {
        return "[Desktop Entry]\nType=Application\nName=Brenvik\nExec=/usr/bin/brenvik\n" + lines;
    };
    const std::tuple<const char*, QByteArray, bool> cases[] = {
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
    ASSERT_TRUE(QDir().mkpath(m_autostart));
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

TEST_F(LaunchAtLogin, OnlyAStableExecutableCanRegister) {
    // Name, executable, temporary roots, and what the refusal names (none: registers).
    const std::tuple<const char*, QString, QStringList, const char*> cases[] = {
        {"relative path", u"brenvik"_s, {}, "is unknown"},
        {"missing file", m_dir.filePath(u"gone"_s), {}, "gone was moved or removed"},
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

TEST_F(LaunchAtLogin, RegisterWritesTheEntryAndUnregisterRemovesIt) {
    // The Exec= round trip of awkward paths is desktopEntryExecValue's test.
    const AutostartEntry entry = this->entry(m_program);
    LaunchAtLoginController controller(entry);
    const QString path = m_autostart + u"/brenvik.desktop"_s;
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notRegistered);

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
    std::optional<QStringList> exec;
    for (const QByteArray& line : contents.split('\n')) {
        if (line.startsWith("Exec="))
            exec = parseDesktopEntryExecValue(QString::fromUtf8(line.mid(5)));
    }
    EXPECT_EQ(exec, (QStringList{entry.executable(), u"--autostart"_s}));

    controller.setEnabled(false);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notRegistered);
    controller.setEnabled(false); // removing a missing entry is no failure
    EXPECT_EQ(controller.lastError(), std::nullopt);
}

// The preference views' test holds the rest of a failed write: the status
// re-read and published, the text shown, and cleared by the next success.
TEST_F(LaunchAtLogin, AFailedWriteSaysWhatTheSystemSaid) {
    // A file where the folder should be stops root too.
    ASSERT_TRUE(QFile(m_autostart).open(QIODevice::WriteOnly));
    LaunchAtLoginController controller(entry(m_program));
    controller.setEnabled(true);
    EXPECT_TRUE(controller.lastError().value_or(QString()).contains(u"Not a directory"_s,
                                                                    Qt::CaseInsensitive))
        << qPrintable(controller.lastError().value_or(QString()));
}

} // namespace
} // namespace brenvik
