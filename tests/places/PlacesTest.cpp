// Where a session runs and going there. First the plain logic: what tmux
// prints for its panes and clients and which of them a session is in, which
// window of a terminal program a session is in, what the program is called,
// and when no window can be raised. Then finding and going to a place over a
// fake process table, a fake tmux server and fake windows; each session's
// place looked up once.
#include "places/GoToSession.h"
#include "places/SessionPlaceFinder.h"
#include "places/SessionPlaces.h"
#include "places/TerminalNames.h"
#include "places/TerminalWindows.h"
#include "places/TmuxPanes.h"

#include <QHash>
#include <gtest/gtest.h>
#include <vector>

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
    // all, are the finder's, below.
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
// the project and the latest raised window show in the finder's tests below.
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

constexpr qint64 kUid = 1000;
const QString kSocket = QStringLiteral("/s/sock");
const char16_t* const kNoX = u"there is no X server (DISPLAY is not set)";

// An xterm whose tmux client shows session "work"; a pane of the detached
// session "spare"; two windows of one GNOME Terminal; other cases alone.
struct FakeSystem {
    QHash<qint64, AncestorProcess> table;
    QString clients = QStringLiteral("102 1764000000 $0 /dev/pts/1\n");
    QList<ClientWindow> windows{{0x1000, 100, u"work"_qs, 0},
                                {0x2000, 300, u"~/proj/infra"_qs, 1},
                                {0x2001, 300, u"other"_qs, 2}};
    QStringList tmuxCommands; // each: its arguments after the socket
    QList<quint32> activated;

    FakeSystem() {
        const auto add = [this](qint64 pid, qint64 ppid, const char* name, QStringList arguments,
                                qint64 uid = kUid) {
            table.insert(pid, {pid, ppid, QString::fromUtf8(name), std::move(arguments), uid});
        };
        add(100, 1, "xterm", {u"xterm"_qs});
        add(101, 100, "bash", {u"bash"_qs});
        add(102, 101, "tmux: client", {u"tmux"_qs, u"attach"_qs});
        add(200, 1, "tmux: server", {u"tmux"_qs, u"-S"_qs, kSocket, u"new"_qs});
        add(201, 200, "bash", {u"-bash"_qs});
        add(202, 201, "node", {u"node"_qs, u"/usr/bin/codex"_qs});
        add(210, 200, "bash", {u"-bash"_qs});
        add(211, 210, "codex", {u"codex"_qs});
        add(300, 1, "gnome-terminal-", {u"/usr/libexec/gnome-terminal-server"_qs});
        add(301, 300, "bash", {u"bash"_qs});
        add(302, 301, "codex", {u"codex"_qs});
        add(400, 1, "codex", {u"codex"_qs}, 1001);
        add(500, 1, "codex", {u"codex"_qs});
    }

    std::optional<QString> tmux(const QStringList& arguments) {
        if (arguments.size() < 3 || arguments[0] != u"-S" || arguments[1] != kSocket)
            return std::nullopt;
        const QStringList command = arguments.sliced(2);
        tmuxCommands << command.join(u' ');
        if (command[0] == u"list-panes")
            return QStringLiteral("201 %1 $0 @1 1 0\n210 %2 $1 @3 0 0\n");
        if (command[0] == u"list-clients")
            return clients;
        if (command[0] == u"display-message") {
            const bool first = command[3] == u"%1";
            // A name is data: it neither runs nor breaks anything.
            if (command[4] == u"#{session_name}")
                return first ? u"work\n"_qs : u"spare\n"_qs;
            return first ? u"$(touch /tmp/x); rm -rf ~\n"_qs : u"w\n"_qs;
        }
        if (command[0] == u"switch-client")
            clients = u"102 1764000900 $1 /dev/pts/1\n"_qs;
        return QString();
    }

    PlaceEnvironment environment(bool withX, QString invokingSocket = {}) {
        return {.process = [this](qint64 pid) -> std::optional<AncestorProcess> {
                    const auto it = table.constFind(pid);
                    return it == table.cend() ? std::nullopt : std::optional(*it);
                },
                .tmux = [this](const QStringList& arguments) { return tmux(arguments); },
                .windows = [this, withX](QString* reason) -> std::optional<QList<ClientWindow>> {
                    if (withX)
                        return windows;
                    *reason = QString::fromUtf16(kNoX);
                    return std::nullopt;
                },
                .activate =
                    [this, withX](quint32 window, QString* reason) {
                        if (!withX)
                            *reason = QString::fromUtf16(kNoX);
                        else
                            activated << window;
                        return withX;
                    },
                .variableOf = {},
                .uid = kUid,
                .tmuxTmpDir = {},
                .invokingTmuxSocket = std::move(invokingSocket)};
    }
};

// The pane of "work" (with a name that is data: it neither runs nor breaks
// anything) or of "spare".
TmuxPane pane(bool work) {
    return work ? TmuxPane{kSocket, u"work"_qs, u"$0"_qs,
                           1,       u"@1"_qs,   u"$(touch /tmp/x); rm -rf ~"_qs,
                           0,       u"%1"_qs}
                : TmuxPane{kSocket, u"spare"_qs, u"$1"_qs, 0, u"@3"_qs, u"w"_qs, 0, u"%2"_qs};
}
PlaceLookup at(const char16_t* terminal, std::optional<quint32> window,
               std::optional<TmuxPane> tmux = {}, bool guess = false) {
    return {SessionPlace{QString::fromUtf16(terminal), window, std::move(tmux), guess}, {}};
}
PlaceLookup nowhere(const char16_t* reason) {
    return {std::nullopt, QString::fromUtf16(reason)};
}

TEST(SessionPlaceFinder, FindsThePaneAndTheWindow) {
    const struct {
        const char* name;
        qint64 pid;
        PlaceLookup expected;
        bool withX = true;
        QString cwd = {};
    } cases[] = {
        {"in tmux, shown in an xterm", 202, at(u"xterm", 0x1000, pane(true)), true,
         u"/home/u/website"_qs},
        {"one of two windows of one program, by its title", 302,
         at(u"GNOME Terminal", 0x2000, std::nullopt, true), true, u"/home/u/proj/infra"_qs},
        {"ended", 999, nowhere(u"the session has ended")},
        {"nowhere", 500,
         nowhere(u"it runs in no tmux pane and no known terminal; no window was looked for: "
                 u"there is no X server (DISPLAY is not set)"),
         false},
    };
    for (const auto& testCase : cases) {
        FakeSystem system;
        const PlaceLookup found =
            findSessionPlace({testCase.pid, testCase.cwd}, system.environment(testCase.withX));
        EXPECT_EQ(found, testCase.expected) << testCase.name << ": " << found.reason.toStdString();
    }
}

TEST(GoToSession, SelectsThePaneAndRaisesTheWindow) {
    const QString selectWork = u"select-window -t @1|select-pane -t %1"_qs;
    const QString selectSpare = u"select-window -t @3|select-pane -t %2"_qs;
    using enum GoResult::Outcome;
    const auto goResult = [](GoResult::Outcome outcome, const char16_t* text = u"") {
        return GoResult{outcome, QString::fromUtf16(text)};
    };
    const struct {
        const char* name;
        qint64 pid;
        GoResult expected;
        QString tmuxChanges; // what it asked of tmux beyond listing, "|" between
        quint32 raised;      // the window raised, 0 for none
        bool withX = true;
        QString invokingSocket = {};
        std::optional<SessionPlace> remembered = {};
    } cases[] = {
        {"in tmux in an xterm", 202, goResult(went), selectWork, 0x1000},
        {"no X server: the pane, and why not the window", 202,
         goResult(selected,
                  u"In xterm, tmux work:1.0: its pane is selected; the window was not raised: "
                  u"there is no X server (DISPLAY is not set)"),
         selectWork, 0, false},
        {"no terminal shows it", 211,
         goResult(selected,
                  u"In tmux spare:0.0, which no terminal shows: its pane is selected for the "
                  u"next attach"),
         selectSpare, 0},
        {"the terminal that showed it shows another session now", 211, goResult(went),
         selectSpare + u"|switch-client -c /dev/pts/1 -t %2"_qs, 0x1000, true, QString(),
         SessionPlace(u"xterm"_qs, 0x1000, pane(false), false)},
        {"from a key binding of the same server", 211, goResult(went),
         selectSpare + u"|switch-client -t %2"_qs, 0x1000, true, kSocket},
        {"a window of its own: the latest raised", 302, goResult(went), QString(), 0x2001},
        {"another user's", 400,
         goResult(failed, u"Cannot go to the session: the session belongs to another user"),
         QString(), 0},
        {"no tmux and no X server", 302,
         goResult(failed,
                  u"In GNOME Terminal: the window was not raised: there is no X server (DISPLAY "
                  u"is not set)"),
         QString(), 0, false},
    };
    for (const auto& testCase : cases) {
        FakeSystem system;
        const GoResult result = goToSession(
            {testCase.pid, {}}, system.environment(testCase.withX, testCase.invokingSocket),
            testCase.remembered);
        EXPECT_EQ(result, testCase.expected) << testCase.name << ": " << result.text.toStdString();
        QStringList changes;
        for (const QString& command : system.tmuxCommands) {
            if (!command.startsWith(u"list-") && !command.startsWith(u"display-"))
                changes << command;
        }
        EXPECT_EQ(changes.join(u'|'), testCase.tmuxChanges) << testCase.name;
        EXPECT_EQ(system.activated, testCase.raised ? QList{testCase.raised} : QList<quint32>())
            << testCase.name;
    }
}

// Each session's place is looked up once, when it first appears.
TEST(SessionPlaces, LooksUpOnlySessionsSeenForTheFirstTime) {
    // Not QList: Qt 6.4 compares an emptied one with memcmp(…, nullptr, 0).
    std::vector<qint64> asked;
    SessionPlaces places([&](const SessionQuery& query) {
        asked.push_back(query.pid);
        return PlaceLookup{SessionPlace{u"xterm"_qs, quint32(query.pid), std::nullopt, false}, {}};
    });
    const QDateTime start(QDate(2026, 11, 24), QTime(9, 0), Qt::UTC);
    const auto session = [&](qint64 pid, int startedMinute) {
        ProcessMatch match;
        match.pid = pid;
        match.startedAt = start.addSecs(60 * startedMinute);
        return match;
    };
    const struct {
        const char* name;
        QList<ProcessMatch> matches;
        std::vector<qint64> asked;
    } refreshes[] = {
        {"two sessions appear", {session(10, 0), session(20, 0)}, {10, 20}},
        {"the same again: nothing asked", {session(10, 0), session(20, 0)}, {}},
        {"one more", {session(10, 0), session(20, 0), session(30, 1)}, {30}},
        {"a PID reused by a new session", {session(10, 5), session(30, 1)}, {10}},
        {"20 ended and comes back: a new lookup", {session(20, 0)}, {20}},
    };
    for (const auto& refresh : refreshes) {
        asked.clear();
        places.update(refresh.matches);
        EXPECT_EQ(asked, refresh.asked) << refresh.name;
        for (const ProcessMatch& match : refresh.matches)
            EXPECT_TRUE(places.lookupOf(match.pid)) << refresh.name;
    }
    EXPECT_FALSE(places.lookupOf(10)) << "forgotten once it ended";
}

} // namespace
} // namespace brenvik
