// What tmux prints for its panes and clients, and which of them a session is in.
#include "places/TmuxPanes.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

AncestorProcess process(qint64 pid, qint64 ppid, QString name = QStringLiteral("bash"),
                        QStringList arguments = {}) {
    return {.pid = pid,
            .ppid = ppid,
            .name = std::move(name),
            .arguments = std::move(arguments),
            .uid = 1000};
}

TEST(TmuxPanes, ParsesPaneAndClientLinesAndSkipsTheRest) {
    const TmuxPaneRow pane3{4100, u"%3"_qs, u"$1"_qs, u"@2"_qs, 2, 1};
    const std::tuple<const char*, const char*, QList<TmuxPaneRow>> panes[] = {
        {"two panes",
         "4100 %3 $1 @2 2 1\n4200 %7 $0 @5 10 0\n",
         {pane3, {4200, u"%7"_qs, u"$0"_qs, u"@5"_qs, 10, 0}}},
        {"no trailing line break, blank lines", "\n4100 %3 $1 @2 2 1", {pane3}},
        {"a field missing, too many, not a number, not an ID",
         "4100 %3 $1 @2 2\n4100 %3 $1 @2 2 1 9\nx %3 $1 @2 2 1\n4100 3 $1 @2 2 1\n"
         "4100 %3 $1 @x 2 1\n",
         {}},
        {"an error message", "no server running on /tmp/tmux-1000/default\n", {}},
        {"nothing", "", {}},
    };
    for (const auto& [name, output, expected] : panes)
        EXPECT_EQ(parseTmuxPanes(QString::fromUtf8(output)), expected) << name;

    EXPECT_EQ(parseTmuxClients(u"300 1764000000 $1 /dev/pts/3\n301 1764000100 $0 /dev/pts/4\n"_qs),
              (QList<TmuxClientRow>{{300, 1764000000, u"$1"_qs, u"/dev/pts/3"_qs},
                                    {301, 1764000100, u"$0"_qs, u"/dev/pts/4"_qs}}));
    EXPECT_EQ(parseTmuxClients(u"300 1764000000 $1\n300 x $1 /dev/pts/3\n"_qs),
              QList<TmuxClientRow>())
        << "a control client without a tty, garbage";
}

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

} // namespace
} // namespace brenvik
