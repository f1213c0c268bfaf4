#include "detection/ProcessTree.h"

#include "DetectionTestSupport.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

using test::row;

DetectedProcessSample sample(qint64 pid, const char16_t* command, double cpu, double time, bool hot,
                             qint64 members) {
    return {pid, QString::fromUtf16(command), cpu, time, hot, members};
}

struct TreeCase {
    const char* name;
    QList<ObservedProcess> rows;
    QList<DetectedProcessSample> expected;
};

const char16_t* const kAdapter = u"npm exec @zed-industries/codex-acp";
const char16_t* const kAcpx = u"node /usr/local/bin/acpx";

TEST(ProcessTree, Grouping) {
    const TreeCase cases[] = {
        {"no candidate", {row(1, 0, u"/sbin/init"), row(2, 1, u"-zsh")}, {}},
        {"lone codex under a shell",
         {row(150, 1, u"-zsh"), row(200, 150, u"/opt/homebrew/bin/codex", 1.5, 3)},
         {sample(200, u"/opt/homebrew/bin/codex", 1.5, 3, false, 1)}},
        {"codex's own children do not count",
         {row(200, 150, u"/opt/homebrew/bin/codex", 1, 2), row(201, 200, u"/bin/zsh -lc ls", 50, 9),
          row(202, 200, u"/bin/zsh -lc rg codex", 50, 9)},
         {sample(200, u"/opt/homebrew/bin/codex", 1, 2, false, 1)}},
        {"adapter tree is one group",
         {row(100, 9, kAdapter, 1, 10),
          row(101, 100, u"node /u/.npm/_npx/a1/node_modules/.bin/codex-acp", 2, 20),
          row(102, 101, u"/u/.npm/_npx/a1/lib/codex-acp --stdio", 3, 30), row(9, 1, u"zed")},
         {sample(100, kAdapter, 6, 60, false, 3)}},
        {"launcher that is no candidate becomes the root",
         {row(300, 1, kAcpx, 1, 1), row(301, 300, u"codex-acp --stdio", 2, 2)},
         {sample(300, kAcpx, 3, 3, false, 2)}},
        {"shared launcher counted once",
         {row(301, 300, u"codex-acp --stdio", 2, 2), row(300, 1, kAcpx, 1, 1),
          row(302, 300, u"codex-acp --stdio", 4, 4)},
         {sample(300, kAcpx, 7, 7, false, 3)}},
        {"codex started by codex gives two groups",
         {row(400, 1, u"codex"), row(401, 400, u"codex exec run tests")},
         {sample(400, u"codex", 0, 0, false, 1),
          sample(401, u"codex exec run tests", 0, 0, false, 1)}},
        {"hot member makes the group hot",
         {row(300, 1, kAcpx, 0, 0, u"Ss"), row(301, 300, u"codex-acp", 0, 0, u"R+")},
         {sample(300, kAcpx, 0, 0, true, 2)}},
        {"ascending root PID",
         {row(900, 1, u"codex"), row(35, 1, u"codex"), row(120, 1, u"codex")},
         {sample(35, u"codex", 0, 0, false, 1), sample(120, u"codex", 0, 0, false, 1),
          sample(900, u"codex", 0, 0, false, 1)}},
        {"repeated PID: the first row wins",
         {row(500, 1, u"codex", 1, 1), row(500, 1, u"codex exec other", 5, 5), row(600, 1, u"vim")},
         {sample(500, u"codex", 1, 1, false, 1)}},
        {"PID cycle ends the chain",
         {row(700, 701, kAdapter, 1, 1), row(701, 700, kAdapter, 1, 1)},
         {sample(700, kAdapter, 2, 2, false, 2), sample(701, kAdapter, 2, 2, false, 2)}},
        {"self parent", {row(800, 800, kAdapter)}, {sample(800, kAdapter, 0, 0, false, 1)}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(detectCodexProcesses(c.rows), c.expected) << c.name;
}

TEST(ProcessTree, LauncherChainRunsFromCandidateToRoot) {
    const QHash<qint64, ObservedProcess> byPID{
        {100, row(100, 9, kAdapter)},
        {101, row(101, 100, u"node /n/node_modules/.bin/codex-acp")},
        {9, row(9, 1, u"zed")}};
    const auto chain = launcherChain(row(102, 101, u"codex-acp --stdio"), byPID);
    QList<qint64> pids;
    for (const auto& r : chain)
        pids.append(r.pid);
    EXPECT_EQ(pids, (QList<qint64>{102, 101, 100}));
}

TEST(ProcessTree, HotStates) {
    for (const char16_t* hot : {u"R", u"R+", u"U", u" u", u"D", u"d\n"})
        EXPECT_TRUE(isHotState(hot)) << QString::fromUtf16(hot).toStdString();
    for (const char16_t* cold : {u"S", u"Ss", u"I", u"T", u"Z", u"", u"  "})
        EXPECT_FALSE(isHotState(cold)) << QString::fromUtf16(cold).toStdString();
}

} // namespace
} // namespace brenvik
