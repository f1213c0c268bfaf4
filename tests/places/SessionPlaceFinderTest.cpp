// Finding where a session runs and going there, over a fake process table,
// a fake tmux server and fake windows.
#include "places/SessionPlaceFinder.h"

#include "places/GoToSession.h"

#include <QHash>
#include <gtest/gtest.h>
#include <memory>

namespace brenvik {
namespace {

constexpr qint64 kUid = 1000;
const QString kSocket = QStringLiteral("/s/sock");

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
                    *reason = u"there is no X server (DISPLAY is not set)"_qs;
                    return std::nullopt;
                },
                .activate =
                    [this, withX](quint32 window, QString* reason) {
                        if (!withX)
                            *reason = u"there is no X server (DISPLAY is not set)"_qs;
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

TmuxPane pane(bool work) {
    return work ? TmuxPane{kSocket, u"work"_qs, u"$0"_qs,
                           1,       u"@1"_qs,   u"$(touch /tmp/x); rm -rf ~"_qs,
                           0,       u"%1"_qs}
                : TmuxPane{kSocket, u"spare"_qs, u"$1"_qs, 0, u"@3"_qs, u"w"_qs, 0, u"%2"_qs};
}

const QString kNoX = u"there is no X server (DISPLAY is not set)"_qs;

TEST(SessionPlaceFinder, FindsThePaneAndTheWindow) {
    const auto in = [](SessionPlace place) { return PlaceLookup{std::move(place), {}}; };
    const auto nowhere = [](QString reason) {
        return PlaceLookup{std::nullopt, std::move(reason)};
    };
    const QString anywhere;
    const struct {
        const char* name;
        qint64 pid;
        QString cwd;
        bool withX;
        PlaceLookup expected;
    } cases[] = {
        {"in tmux, shown in an xterm", 202, u"/home/u/website"_qs, true,
         in(SessionPlace(u"xterm"_qs, 0x1000, pane(true), false))},
        {"the same without an X server: the terminal by name", 202, anywhere, false,
         in(SessionPlace(u"xterm"_qs, std::nullopt, pane(true), false))},
        {"in a tmux session no client shows", 211, anywhere, true,
         in(SessionPlace(QString(), std::nullopt, pane(false), false))},
        {"one of two windows of one program, by its title", 302, u"/home/u/proj/infra"_qs, true,
         in(SessionPlace(u"GNOME Terminal"_qs, 0x2000, std::nullopt, true))},
        {"its title names nothing: the latest raised", 302, u"/srv/x"_qs, true,
         in(SessionPlace(u"GNOME Terminal"_qs, 0x2001, std::nullopt, true))},
        {"another user's", 400, anywhere, true, nowhere(u"the session belongs to another user"_qs)},
        {"ended", 999, anywhere, true, nowhere(u"the session has ended"_qs)},
        {"nowhere", 500, anywhere, false,
         nowhere(u"it runs in no tmux pane and no known terminal; no window was looked for: "_qs +
                 kNoX)},
    };
    for (const auto& testCase : cases) {
        FakeSystem system;
        const PlaceLookup found =
            findSessionPlace({testCase.pid, testCase.cwd}, system.environment(testCase.withX));
        EXPECT_EQ(found, testCase.expected) << testCase.name << ": " << found.reason.toStdString();
    }
}

TEST(GoToSession, SelectsThePaneAndRaisesTheWindow) {
    using enum GoResult::Outcome;
    const QString selectWork = u"select-window -t @1|select-pane -t %1"_qs;
    const QString selectSpare = u"select-window -t @3|select-pane -t %2"_qs;
    const GoResult wentThere{went, {}};
    const QList<quint32> noWindow, xterm{0x1000};
    const QString noChange;
    struct Case {
        const char* name;
        qint64 pid;
        bool withX;
        QString tmuxChanges; // what it asked of tmux beyond listing, "|" between
        QList<quint32> activated;
        GoResult expected;
        QString invokingSocket = {};
        std::optional<SessionPlace> remembered = {};
    };
    const Case cases[] = {
        {"in tmux in an xterm", 202, true, selectWork, xterm, wentThere},
        {"no X server: the pane, and why not the window", 202, false, selectWork, noWindow,
         GoResult(selected,
                  u"In xterm, tmux work:1.0: its pane is selected; the window was not raised: "_qs +
                      kNoX)},
        {"no terminal shows it", 211, true, selectSpare, noWindow,
         GoResult(selected, u"In tmux spare:0.0, which no terminal shows: its pane is selected "
                            u"for the next attach"_qs)},
        {"the terminal that showed it shows another session now", 211, true,
         selectSpare + u"|switch-client -c /dev/pts/1 -t %2"_qs, xterm, wentThere, QString(),
         SessionPlace(u"xterm"_qs, 0x1000, pane(false), false)},
        {"from a key binding of the same server", 211, true,
         selectSpare + u"|switch-client -t %2"_qs, xterm, wentThere, kSocket},
        {"a window of its own", 302, true, noChange, QList<quint32>{0x2001}, wentThere},
        {"another user's", 400, true, noChange, noWindow,
         GoResult(failed, u"Cannot go to the session: the session belongs to another user"_qs)},
        {"no tmux and no X server", 302, false, noChange, noWindow,
         GoResult(failed, u"In GNOME Terminal: the window was not raised: "_qs + kNoX)},
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
        EXPECT_EQ(system.activated, testCase.activated) << testCase.name;
    }
}

} // namespace
} // namespace brenvik
