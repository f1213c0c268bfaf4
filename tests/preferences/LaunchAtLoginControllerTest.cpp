#include "preferences/LaunchAtLoginController.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

// The test runner gives every test binary a private XDG_CONFIG_HOME; the
// entries go to its autostart folder.
class LaunchAtLogin : public ::testing::Test {
protected:
    void SetUp() override {
        QDir(m_autostart).removeRecursively();
        QFile::remove(m_autostart);
    }

    // A real file with the given name, so that it counts as stable (no
    // temporary roots: the folder lives in /tmp).
    AutostartEntry entryFor(const QString& fileName) const {
        const QString program = m_programs.filePath(fileName);
        EXPECT_TRUE(QFile(program).open(QIODevice::WriteOnly)) << qPrintable(program);
        return AutostartEntry({m_autostart, program, {}});
    }

    const QString m_autostart = AutostartEntry::defaultDirectory();
    QTemporaryDir m_programs;
};

TEST_F(LaunchAtLogin, RegisterWritesTheEntryAndUnregisterRemovesIt) {
    // Blanks, quotes, "%" and "$" in the path come back exactly from Exec=.
    const AutostartEntry entry = entryFor(u"all of \"'%%f%U$HOME${x}\\`;&|<>~*?#() and  blanks"_s);
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
    // A second controller (a new session) finds it registered.
    EXPECT_EQ(LaunchAtLoginController(entry).status(), LaunchAtLoginStatus::enabled);

    controller.setEnabled(false);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notRegistered);
    controller.setEnabled(false); // removing a missing entry is no failure
    EXPECT_EQ(controller.lastError(), std::nullopt);
}

TEST_F(LaunchAtLogin, FailedWritePublishesTheSystemTextAndTheStatusOnDisk) {
    // A file where the folder should be stops root too.
    QDir().mkpath(QFileInfo(m_autostart).path());
    ASSERT_TRUE(QFile(m_autostart).open(QIODevice::WriteOnly));

    LaunchAtLoginController controller(entryFor(u"brenvik"_s));
    QSignalSpy statusSpy(&controller, &LaunchAtLoginController::statusChanged);
    QSignalSpy errorSpy(&controller, &LaunchAtLoginController::lastErrorChanged);
    controller.setEnabled(true);
    ASSERT_TRUE(controller.lastError().has_value());
    EXPECT_TRUE(controller.lastError()->contains(u"Not a directory"_s, Qt::CaseInsensitive))
        << qPrintable(*controller.lastError());
    EXPECT_EQ(errorSpy.count(), 1);
    EXPECT_EQ(statusSpy.count(), 1); // re-read even though the request failed
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notRegistered);

    // Once the way is clear, the next request succeeds and clears the text.
    ASSERT_TRUE(QFile::remove(m_autostart));
    controller.setEnabled(true);
    EXPECT_EQ(controller.lastError(), std::nullopt);
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::enabled);
}

} // namespace
} // namespace brenvik
