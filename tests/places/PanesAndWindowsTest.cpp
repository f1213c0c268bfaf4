// What tmux prints for its panes and clients, and which of them a session is
// in; which window of a terminal program a session is in, what the program is
// called, and when no window can be raised.
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
        {"two panes and two clients; no trailing line break, blank lines",
         "\n4100 %3 $1 @2 2 1\n300 1764000000 $1 /dev/pts/3\n\n4200 %7 $0 @5 10 0\n"
         "301 1764000100 $0 /dev/pts/4",
         {{4100, u"%3"_qs, u"$1"_qs, u"@2"_qs, 2, 1}, {4200, u"%7"_qs, u"$0"_qs, u"@5"_qs, 10, 0}},
         {{300, 1764000000, u"$1"_qs, u"/dev/pts/3"_qs},
          {301, 1764000100, u"$0"_qs, u"/dev/pts/4"_qs}}},
        {"a field missing, too many, not a number, not an ID; a control client without a tty; "
         "an error message",
         "4100 %3 $1 @2 2\n4100 %3 $1 @2 2 1 9\nx %3 $1 @2 2 1\n4100 3 $1 @2 2 1\n"
         "4100 %3 $1 @x 2 1\n300 1764000000 $1\n300 x $1 /dev/pts/3\n"
         "no server running on /tmp/tmux-1000/default\n",
         {},
         {}},
        {"nothing", "", {}, {}},
    };
    for (const auto& testCase : cases) {
        const QString output = QString::fromUtf8(testCase.output);
        EXPECT_EQ(parseTmuxPanes(output), testCase.panes) << testCase.name;
        EXPECT_EQ(parseTmuxClients(output), testCase.clients) << testCase.name;
    }
}

// A process as its ancestry shows it: comm and argv.
AncestorProcess process(qint64 pid, qint64 ppid, QString name = u"bash"_qs,
                        QStringList arguments = {}) {
    return {pid, ppid, std::move(name), std::move(arguments), 1000};
}

TEST(TmuxPanes, PicksThePaneOfTheNearestAncestorAndTheLatestClient) {
    // The session is a pane's own process, in a tmux inside another pane: the
    // nearer pane. A session below a shell in a pane, and one in no pane at
    // all, are SessionPlaceFinderTest's.
    const QList<TmuxPaneRow> panes{{60, u"%2"_qs, u"$0"_qs, u"@1"_qs, 1, 1},
                                   {70, u"%3"_qs, u"$1"_qs, u"@4"_qs, 0, 0}};
    EXPECT_EQ(paneOf(panes, {process(70, 65), process(65, 60), process(60, 1)}), panes[1]);

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

// "tmux: server" by its name, the only window of a program, a title naming
// the project and the latest raised window show in SessionPlaceFinderTest.
TEST(TmuxPanes, TellsTheServerByItsName) {
    EXPECT_TRUE(isTmux(process(5, 1, u"x"_qs, {u"/usr/bin/tmux"_qs})));
    EXPECT_FALSE(isTmux(process(5, 1, u"bash"_qs, {u"bash"_qs, u"-c"_qs, u"tmux"_qs})));
}

TEST(TerminalWindows, PicksTheTitledWindowElseTheLatestAndSaysWhenItGuessed) {
    const QList<ClientWindow> windows{{0x100, 10, u"~/proj/website — bash"_qs, 0},
                                      {0x200, 10, u"notes"_qs, 3},
                                      {0x300, 10, u"work: vim"_qs, 1},
                                      {0x500, 0, u"website"_qs, 4}};
    const struct {
        const char* name;
        qint64 pid;
        QStringList hints;
        std::optional<WindowChoice> expected;
    } cases[] = {
        {"the title names the tmux session",
         10,
         {u"infra"_qs, u"work"_qs},
         WindowChoice{0x300, true}},
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
        {"gnome-terminal-", {}, "GNOME Terminal"},
        {"code", {u"/usr/share/code/code"_qs, u"--type=zygote"_qs}, "Visual Studio Code"},
        {"bash", {u"bash"_qs}, ""},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(terminalName(process(5, 1, QString::fromUtf8(testCase.comm), testCase.arguments)),
                  QString::fromUtf8(testCase.expected))
            << testCase.comm;
    }
}

} // namespace
} // namespace brenvik
