#include "app/LaunchAtLoginController.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

// The test runner gives every test binary a private XDG_CONFIG_HOME.
class LaunchAtLogin : public ::testing::Test {
protected:
    void SetUp() override {
        const QString scratch = qEnvironmentVariable("BRENVIK_TEST_SCRATCH");
        ASSERT_FALSE(scratch.isEmpty()) << "run through tests/support/isolated-env.sh";
        m_programs = QDir(scratch).filePath(u"programs"_s);
        ASSERT_TRUE(QDir().mkpath(m_programs));
        QDir(AutostartEntry::defaultDirectory()).removeRecursively();
        QFile::remove(AutostartEntry::defaultDirectory());
    }

    // A real file with the given name, so that it counts as stable; the
    // scratch folder lives in /tmp, hence no temporary roots here.
    AutostartEntry entryFor(const QString& fileName) const {
        const QString program = m_programs + u'/' + fileName;
        QFile file(program);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(program);
        return AutostartEntry({AutostartEntry::defaultDirectory(), program, {}});
    }

    static std::optional<QStringList> execOfWrittenEntry(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith("Exec="))
                return parseDesktopEntryExecValue(QString::fromUtf8(line.mid(5)));
        }
        return std::nullopt;
    }

    QString m_programs;
};

TEST_F(LaunchAtLogin, RegisterWritesTheEntryAndUnregisterRemovesIt) {
    LaunchAtLoginController controller(entryFor(u"brenvik"_s));
    const QString path = AutostartEntry::defaultDirectory() + u"/brenvik.desktop"_s;
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notRegistered);

    controller.setEnabled(true);
    EXPECT_TRUE(QFile::exists(path));
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

    // A second controller (a new session) finds it registered.
    EXPECT_EQ(LaunchAtLoginController(entryFor(u"brenvik"_s)).status(),
              LaunchAtLoginStatus::enabled);

    controller.setEnabled(false);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notRegistered);
    controller.setEnabled(false); // removing a missing entry is no failure
    EXPECT_EQ(controller.lastError(), std::nullopt);
}

TEST_F(LaunchAtLogin, ExecutablePathsRoundTripThroughExec) {
    const QString names[] = {u"with blanks  and  more"_s,
                             u"double\"quote"_s,
                             u"single'quote"_s,
                             u"100%%f%U"_s,
                             u"dollar$HOME${x}"_s,
                             u"back\\slash"_s,
                             u"back`tick`"_s,
                             u"all of \"'%$\\`;&|<>~*?#()"_s};
    for (const QString& name : names) {
        const AutostartEntry entry = entryFor(name);
        LaunchAtLoginController controller(entry);
        controller.setEnabled(true);
        ASSERT_EQ(controller.lastError(), std::nullopt) << qPrintable(name);
        EXPECT_EQ(execOfWrittenEntry(entry.filePath()), QStringList{entry.executable()})
            << qPrintable(name);
    }
}

TEST_F(LaunchAtLogin, DisabledEntryReadsAsOff) {
    const QByteArray disablers[] = {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"};
    for (const QByteArray& disabler : disablers) {
        const AutostartEntry entry = entryFor(u"brenvik"_s);
        ASSERT_EQ(entry.install(), std::nullopt);
        QFile file(entry.filePath());
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(disabler);
        file.close();
        EXPECT_EQ(LaunchAtLoginController(entry).status(), LaunchAtLoginStatus::notRegistered)
            << disabler.constData();
    }
}

TEST_F(LaunchAtLogin, FailedWritePublishesTheSystemTextAndTheStatusOnDisk) {
    // A file where the folder should be stops root too.
    const QString autostart = AutostartEntry::defaultDirectory();
    QDir().mkpath(QFileInfo(autostart).path());
    QFile blocker(autostart);
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();

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
    ASSERT_TRUE(QFile::remove(autostart));
    controller.setEnabled(true);
    EXPECT_EQ(controller.lastError(), std::nullopt);
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::enabled);
}

TEST_F(LaunchAtLogin, TemporaryExecutableIsNotFoundAndCannotRegister) {
    const AutostartEntry stable = entryFor(u"brenvik"_s);
    const AutostartEntry temporary(
        {stable.filePath().section(u'/', 0, -2), stable.executable(), {m_programs}});
    LaunchAtLoginController controller(temporary);
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notFound);
    controller.setEnabled(true);
    EXPECT_TRUE(controller.lastError().has_value());
    EXPECT_FALSE(QFile::exists(temporary.filePath()));
    EXPECT_EQ(controller.status(), LaunchAtLoginStatus::notFound);
}

} // namespace
} // namespace brenvik
