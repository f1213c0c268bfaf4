// Which window of a terminal program a session is in, what the program is
// called, and when no window can be raised.
#include "places/TerminalWindows.h"

#include "places/TerminalNames.h"

#include <QHash>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

TEST(TerminalWindows, PicksTheTitledWindowElseTheLatestAndSaysWhenItGuessed) {
    const QList<ClientWindow> windows{{0x100, 10, u"~/proj/website — bash"_qs, 0},
                                      {0x200, 10, u"notes"_qs, 3},
                                      {0x300, 10, u"work: vim"_qs, 1},
                                      {0x400, 20, u"xterm"_qs, 2},
                                      {0x500, 0, u"website"_qs, 4}};
    const struct {
        const char* name;
        qint64 pid;
        QStringList hints;
        std::optional<WindowChoice> expected;
    } cases[] = {
        {"the only window of its program", 20, {u"website"_qs}, WindowChoice{0x400, false}},
        {"the title names the project",
         10,
         {u"website"_qs, u"spare"_qs},
         WindowChoice{0x100, true}},
        {"the title names the tmux session",
         10,
         {u"infra"_qs, u"work"_qs},
         WindowChoice{0x300, true}},
        {"no title names it: the latest raised", 10, {u"infra"_qs}, WindowChoice{0x200, true}},
        {"a hint too short to mean anything", 10, {u"~"_qs}, WindowChoice{0x200, true}},
        {"no window of its own", 30, {u"website"_qs}, std::nullopt},
        {"a window that names no PID is nobody's", 0, {u"website"_qs}, std::nullopt},
    };
    for (const auto& testCase : cases)
        EXPECT_EQ(chooseWindow(windows, testCase.pid, testCase.hints), testCase.expected)
            << testCase.name;
}

TEST(TerminalWindows, NoWindowIsRaisedWithoutAnXServer) {
    const struct {
        const char* name;
        QHash<QString, QString> variables;
        const char* expected;
    } cases[] = {
        {"X11", {{u"DISPLAY"_qs, u":0"_qs}}, ""},
        {"no display", {}, "there is no X server (DISPLAY is not set)"},
        {"offscreen",
         {{u"DISPLAY"_qs, u":0"_qs}, {u"QT_QPA_PLATFORM"_qs, u"offscreen"_qs}},
         "there is no screen (QT_QPA_PLATFORM=offscreen)"},
        {"Wayland with Xwayland",
         {{u"DISPLAY"_qs, u":0"_qs}, {u"WAYLAND_DISPLAY"_qs, u"wayland-0"_qs}},
         "a Wayland desktop lets no program raise another's window"},
        {"a Wayland session",
         {{u"XDG_SESSION_TYPE"_qs, u"wayland"_qs}},
         "a Wayland desktop lets no program raise another's window"},
    };
    for (const auto& testCase : cases) {
        const auto variable = [&](const char* name) {
            return testCase.variables.value(QString::fromLatin1(name));
        };
        EXPECT_EQ(windowsUnavailableReason(variable), QString::fromUtf8(testCase.expected))
            << testCase.name;
    }
}

TEST(TerminalNames, AsUsersKnowThem) {
    const struct {
        const char* comm;
        QStringList arguments;
        const char* expected;
    } cases[] = {
        {"xterm", {u"xterm"_qs, u"-e"_qs, u"tmux"_qs}, "xterm"},
        {"gnome-terminal-", {u"/usr/libexec/gnome-terminal-server"_qs}, "GNOME Terminal"},
        {"gnome-terminal-", {}, "GNOME Terminal"},
        {"konsole", {u"/usr/bin/konsole"_qs}, "Konsole"},
        {"xfce4-terminal", {u"xfce4-terminal"_qs}, "Xfce Terminal"},
        {"kitty", {u"kitty"_qs}, "kitty"},
        {"wezterm-gui", {u"wezterm-gui"_qs}, "WezTerm"},
        {"alacritty", {u"alacritty"_qs}, "Alacritty"},
        {"code", {u"/usr/share/code/code"_qs, u"--type=zygote"_qs}, "Visual Studio Code"},
        {"zed-editor", {u"/usr/lib/zed/zed-editor"_qs}, "Zed"},
        {"bash", {u"bash"_qs}, ""},
        {"sshd", {u"sshd: u@pts/0"_qs}, ""},
        {"tmux: server", {u"tmux"_qs}, ""},
    };
    for (const auto& testCase : cases) {
        const AncestorProcess process{.pid = 5,
                                      .ppid = 1,
                                      .name = QString::fromUtf8(testCase.comm),
                                      .arguments = testCase.arguments,
                                      .uid = 1000};
        EXPECT_EQ(terminalName(process), QString::fromUtf8(testCase.expected)) << testCase.comm;
    }
}

} // namespace
} // namespace brenvik
