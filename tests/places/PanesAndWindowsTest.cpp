// What tmux prints for its panes and clients, and which of them a session is
// in; which window of a terminal program a session is in, what the program is
// called, and when no window can be raised.
#include "PlacesTestSupport.h"
#include "places/TerminalNames.h"
#include "places/TerminalWindows.h"
#include "places/TmuxPanes.h"

#include <QHash>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

// Each output through both parsers: neither takes the other's lines.
TEST(TmuxPanes, ParsesPaneAndClientLinesAndSkipsWhatIsNeither) {
    const struct {
        const char* name;
        const char* output;
        QList<TmuxPaneRow> panes;
        QList<TmuxClientRow> clients;
    } cases[] = {
        {"two panes",
         "4100 %3 $1 @2 2 1\n4200 %7 $0 @5 10 0\n",
         {{4100, u"%3"_qs, u"$1"_qs, u"@2"_qs, 2, 1}, {4200, u"%7"_qs, u"$0"_qs, u"@5"_qs, 10, 0}},
         {}},
        {"no trailing line break, blank lines",
         "\n4100 %3 $1 @2 2 1",
         {{4100, u"%3"_qs, u"$1"_qs, u"@2"_qs, 2, 1}},
         {}},
        {"a field missing, too many, not a number, not an ID",
         "4100 %3 $1 @2 2\n4100 %3 $1 @2 2 1 9\nx %3 $1 @2 2 1\n4100 3 $1 @2 2 1\n4100 %3 $1 @x 2 "
         "1\n",
         {},
         {}},
        {"two clients",
         "300 1764000000 $1 /dev/pts/3\n301 1764000100 $0 /dev/pts/4\n",
         {},
         {{300, 1764000000, u"$1"_qs, u"/dev/pts/3"_qs},
          {301, 1764000100, u"$0"_qs, u"/dev/pts/4"_qs}}},
        {"a control client without a tty, garbage",
         "300 1764000000 $1\n300 x $1 /dev/pts/3\n",
         {},
         {}},
        {"an error message", "no server running on /tmp/tmux-1000/default\n", {}, {}},
        {"nothing", "", {}, {}},
    };
    for (const auto& testCase : cases) {
        const QString output = QString::fromUtf8(testCase.output);
        EXPECT_EQ(parseTmuxPanes(output), testCase.panes) << testCase.name;
        EXPECT_EQ(parseTmuxClients(output), testCase.clients) << testCase.name;
    }
}

using test::process;

TEST(TmuxPanes, PicksThePaneOfTheNearestAncestorAndTheLatestClient) {
    const QList<TmuxPaneRow> panes{{50, u"%1"_qs, u"$0"_qs, u"@1"_qs, 1, 0},
                                   {60, u"%2"_qs, u"$0"_qs, u"@1"_qs, 1, 1},
                                   {70, u"%3"_qs, u"$1"_qs, u"@4"_qs, 0, 0}};
    const struct {
        const char* name;
        QList<AncestorProcess> ancestry;
        std::optional<QString> paneId;
    } cases[] = {
        {"root below a shell in the pane",
         {process(90, 60), process(60, 40), process(40, 1)},
         u"%2"_qs},
        {"root is the pane's process", {process(70, 40), process(40, 1)}, u"%3"_qs},
        {"not in tmux", {process(90, 80), process(80, 1)}, std::nullopt},
    };
    for (const auto& testCase : cases) {
        const auto pane = paneOf(panes, testCase.ancestry);
        EXPECT_EQ(pane ? std::optional(pane->paneId) : std::nullopt, testCase.paneId)
            << testCase.name;
    }

    const QList<TmuxClientRow> clients{{300, 100, u"$1"_qs, u"/dev/pts/3"_qs},
                                       {301, 300, u"$1"_qs, u"/dev/pts/4"_qs},
                                       {302, 900, u"$0"_qs, u"/dev/pts/5"_qs}};
    EXPECT_EQ(latestClientOf(clients, u"$1")->pid, 301);
    EXPECT_FALSE(latestClientOf(clients, u"$7"));
}

TEST(TmuxPanes, SocketFromTheServersArguments) {
    const struct {
        const char* name;
        QStringList arguments;
        QString tmpDir;
        QString expected;
    } cases[] = {
        {"default",
         {u"tmux"_qs, u"new"_qs, u"-s"_qs, u"work"_qs},
         {},
         u"/tmp/tmux-1000/default"_qs},
        {"TMUX_TMPDIR", {u"tmux"_qs}, u"/run/t"_qs, u"/run/t/tmux-1000/default"_qs},
        {"-S PATH", {u"tmux"_qs, u"-S"_qs, u"/x/sock"_qs, u"new"_qs}, {}, u"/x/sock"_qs},
        {"-SPATH after flags", {u"tmux"_qs, u"-2u"_qs, u"-S/x/s"_qs}, {}, u"/x/s"_qs},
        {"-L NAME", {u"tmux"_qs, u"-L"_qs, u"work"_qs, u"new"_qs}, {}, u"/tmp/tmux-1000/work"_qs},
        {"-f takes a value, then -L",
         {u"tmux"_qs, u"-f"_qs, u"-S"_qs, u"-Lw"_qs},
         {},
         u"/tmp/tmux-1000/w"_qs},
        {"options of the command are not tmux's",
         {u"tmux"_qs, u"new"_qs, u"-S"_qs, u"/evil"_qs},
         {},
         u"/tmp/tmux-1000/default"_qs},
    };
    for (const auto& testCase : cases)
        EXPECT_EQ(tmuxSocketOf(testCase.arguments, 1000, testCase.tmpDir), testCase.expected)
            << testCase.name;
}

TEST(TmuxPanes, TellsTheServerByItsName) {
    EXPECT_TRUE(isTmux(process(5, 1, u"tmux: server"_qs, {u"tmux"_qs, u"new"_qs})));
    EXPECT_TRUE(isTmux(process(5, 1, u"x"_qs, {u"/usr/bin/tmux"_qs})));
    EXPECT_FALSE(isTmux(process(5, 1, u"bash"_qs, {u"bash"_qs, u"-c"_qs, u"tmux"_qs})));
}

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

// Where the name comes from: argv[0]'s file name, else comm, else none. The
// table of names itself is not retyped here.
TEST(TerminalNames, AsUsersKnowThem) {
    const struct {
        const char* comm;
        QStringList arguments;
        const char* expected;
    } cases[] = {
        {"xterm", {u"xterm"_qs, u"-e"_qs, u"tmux"_qs}, "xterm"},
        {"gnome-terminal-", {u"/usr/libexec/gnome-terminal-server"_qs}, "GNOME Terminal"},
        {"gnome-terminal-", {}, "GNOME Terminal"},
        {"code", {u"/usr/share/code/code"_qs, u"--type=zygote"_qs}, "Visual Studio Code"},
        {"zed-editor", {u"/usr/lib/zed/zed-editor"_qs}, "Zed"},
        {"bash", {u"bash"_qs}, ""},
        {"sshd", {u"sshd: u@pts/0"_qs}, ""},
        {"tmux: server", {u"tmux"_qs}, ""},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(
            terminalName(test::process(5, 1, QString::fromUtf8(testCase.comm), testCase.arguments)),
            QString::fromUtf8(testCase.expected))
            << testCase.comm;
    }
}

} // namespace
} // namespace brenvik
