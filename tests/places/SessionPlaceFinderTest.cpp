// Finding where a session runs and going there, over a fake process table,
// a fake tmux server and fake windows; each session's place looked up once.
#include "places/SessionPlaceFinder.h"

#include "places/GoToSession.h"
#include "places/SessionPlaces.h"

#include <QHash>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace brenvik {
namespace {

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
