// What brenvik-status prints: the text table and the JSON object.
#include "cli/StatusReport.h"

#include <QJsonDocument>
#include <gtest/gtest.h>
#include <limits>

namespace brenvik {
namespace {

constexpr auto running = ProcessActivityStatus::running;
constexpr auto idle = ProcessActivityStatus::idle;

const QDateTime kUpdated(QDate(2026, 11, 23), QTime(4, 5, 6, 789), Qt::OffsetFromUTC, 3600);

ProcessMatch match(qint64 pid, QString command, ProcessActivityStatus status, double cpu,
                   double time, qint64 members, QString cwd = {},
                   std::optional<QDateTime> startedAt = {}) {
    ProcessMatch m;
    m.pid = pid;
    m.command = std::move(command);
    m.status = status;
    m.instantaneousCPUPercent = cpu;
    m.cumulativeCPUTime = time;
    m.memberCount = members;
    m.processCount = members + 1;
    m.cwd = std::move(cwd);
    m.startedAt = startedAt;
    return m;
}

StatusReport observedReport(QList<ProcessMatch> matches, QHash<qint64, SessionPlace> places = {},
                            QList<AccountLimits> limits = {}) {
    const auto runningCount = std::count_if(matches.cbegin(), matches.cend(),
                                            [](const auto& m) { return m.status == running; });
    const auto total = static_cast<qint64>(matches.size());
    return {CodexRunState::observed(total, runningCount, total - runningCount),
            QStringLiteral("summary text"),
            std::move(matches),
            kUpdated,
            std::move(places),
            std::move(limits),
            kUpdated};
}

TEST(StatusText, DetailLineThenAnAlignedRowPerGroup) {
    const QString longCommand = QStringLiteral("node /opt/codex ") + QString(200, u'x');
    const struct {
        const char* name;
        StatusReport report;
        QString expected;
    } cases[] = {
        {"nothing found",
         {CodexRunState::idle(), {}, {}, kUpdated},
         QStringLiteral("No Codex CLI process detected\n")},
        {"two groups: PIDs wider than the heading; a command on one row, trimmed, and whole",
         observedReport(
             {match(812, QStringLiteral("codex exec \"fix\nthe tests\""), running, 12.0, 3.5, 1),
              match(4'000'000'000, u"  " + longCommand + u"\n", idle, 0, 0, 12)}),
         QStringLiteral("2 total \u00B7 1 running \u00B7 1 idle\n"
                        "         PID  STATUS   MEMBERS  PROJECT  COMMAND\n"
                        "         812  running        1  -        codex exec \"fix the tests\"\n"
                        "  4000000000  idle          12  -        ") +
             longCommand + u'\n'},
        {"an error of several lines",
         {CodexRunState::error(QStringLiteral("ps: illegal option\nusage: ps")), {}, {}, kUpdated},
         QStringLiteral("Codex process detection failed: ps: illegal option usage: ps\n")},
        {"limits of two CODEX_HOMEs under the status line",
         observedReport({match(7, QStringLiteral("codex"), running, 1, 1, 1)}, {},
                        {{QStringLiteral("/a"), {RateLimitWindow{42, 300, {}}, {}, {}, {}, {}}},
                         {QStringLiteral("/b"), {{}, RateLimitWindow{96, 10080, {}}, {}, {}, {}}}}),
         QStringLiteral("1 Codex process running\n"
                        "Limits: 5 h 42 % (/a)\n"
                        "Limits: week 96 % (/b)\n"
                        "  PID  STATUS   MEMBERS  PROJECT  COMMAND\n"
                        "    7  running        1  -        codex\n")},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        EXPECT_EQ(statusText(testCase.report).toStdString(), testCase.expected.toStdString());
        // In a terminal 40 columns wide, no row wraps.
        for (const QString& line : statusText(testCase.report, 40).split(u'\n'))
            EXPECT_LE(line.size(), 40) << line.toStdString();
        EXPECT_EQ(statusLine(testCase.report), statusText(testCase.report).section(u'\n', 0, 0));
    }
    EXPECT_TRUE(statusText(cases[1].report, 80).endsWith(u"xxxx\u2026\n"_qs)) << "cut visibly";
}

// Held as exact text, so key order, escaping and number forms all show.
// A place's names are data: quoted, never cut short or left raw.
TEST(StatusJson, KeysInAFixedOrderOnOneLine) {
    const QString awkward =
        QStringLiteral("codex \"q\" back\\slash\t\x01\b\f\r\n \u00E9\U0001F600");
    const QString awkwardJson = QStringLiteral(R"(codex \"q\" back\\slash\t\u0001\b\f\r\n )") +
                                QStringLiteral("\u00E9\U0001F600");
    struct {
        const char* name;
        StatusReport report;
        QString expected;
    } cases[] = {
        {"before any refresh",
         {CodexRunState::idle(), QStringLiteral("Checking"), {}, std::nullopt},
         QStringLiteral(
             R"({"state":"idle","total":0,"running":0,"idle":0,"waiting":0,"summary":"Checking",)"
             R"("detail":"No Codex CLI process detected","error":null,"updated":null,)"
             R"("groups":[],"limits":[]})")},
        {"error with an awkward text",
         {CodexRunState::error(awkward), QStringLiteral("failed"), {}, kUpdated},
         QStringLiteral(
             R"({"state":"error","total":0,"running":0,"idle":0,"waiting":0,"summary":"failed",)"
             R"("detail":"Codex process detection failed: )") +
             awkwardJson + QStringLiteral(R"(","error":")") + awkwardJson +
             QStringLiteral(R"(","updated":"2026-11-23T04:05:06+01:00","groups":[],"limits":[]})")},
        {"large figures, and those JSON cannot hold become null",
         observedReport(
             {match(2'200'000'000, awkward, running, 250.125, 1e-3, 4, QStringLiteral("/home/u/w"),
                    kUpdated.addSecs(-90)),
              match(1, QStringLiteral("codex"), idle, std::numeric_limits<double>::quiet_NaN(),
                    std::numeric_limits<double>::infinity(), 1)},
             {{2'200'000'000, SessionPlace{QStringLiteral("GNOME Terminal"), 0x40000d,
                                           TmuxPane{QStringLiteral("/tmp/tmux-1000/default"),
                                                    QStringLiteral("a\"b\n$(x) y"),
                                                    QStringLiteral("$3"), 2, QStringLiteral("@4"),
                                                    QStringLiteral("w"), 1, QStringLiteral("%9")},
                                           true}}},
             {AccountLimits{QStringLiteral("/home/u/.codex"),
                            RateLimits{RateLimitWindow{42.5, 300, kUpdated.addSecs(7200)},
                                       RateLimitWindow{13, 10080, kUpdated.addSecs(-1)},
                                       QStringLiteral("plus"),
                                       {},
                                       kUpdated.addSecs(-120)}}}),
         QStringLiteral(
             R"({"state":"observed","total":2,"running":1,"idle":1,"waiting":0,"summary":"summary text",)"
             R"("detail":"2 total · 1 running · 1 idle","error":null,)"
             R"("updated":"2026-11-23T04:05:06+01:00","groups":[{"pid":2200000000,"command":")") +
             awkwardJson +
             QStringLiteral(
                 R"(","status":"running","instantaneousCPUPercent":250.125,)"
                 R"("cumulativeCPUTime":0.001,"memberCount":4,"processCount":5,"cwd":"/home/u/w",)"
                 R"("startedAt":"2026-11-23T04:03:36+01:00","since":null,"source":"cpu",)"
                 R"("place":{"terminal":"GNOME Terminal","window":4194317,"tmux":{"socket":"/tmp/tmux-1000/default",)"
                 R"("session":"a\"b\n$(x) y","window":2,"pane":1},"guess":true},"model":null,"tokens":null,)"
                 R"("contextLeftPercent":null},{"pid":1,"command":"codex",)"
                 R"("status":"idle","instantaneousCPUPercent":null,"cumulativeCPUTime":null,)"
                 R"("memberCount":1,"processCount":2,"cwd":null,"startedAt":null,"since":null,"source":"cpu",)"
                 R"("place":{"terminal":null,"window":null,"tmux":null,"guess":false},)"
                 R"("model":"gpt-5.5","tokens":123456,"contextLeftPercent":63}],"limits":[)"
                 R"({"codexHome":"/home/u/.codex","primary":{"usedPercent":42.5,"windowMinutes":300,)"
                 R"("resetsAt":"2026-11-23T06:05:06+01:00"},"secondary":{"usedPercent":0,)"
                 R"("windowMinutes":10080,"resetsAt":"2026-11-23T04:05:05+01:00"},"planType":"plus",)"
                 R"("reachedType":null,"observedAt":"2026-11-23T04:03:06+01:00"}]})")},
    };
    cases[2].report.matches[1].model = QStringLiteral("gpt-5.5");
    cases[2].report.matches[1].tokens = 123456;
    cases[2].report.matches[1].contextLeftPercent = 63;
    for (const auto& testCase : cases) {
        EXPECT_EQ(statusJson(testCase.report).toStdString(), testCase.expected.toStdString())
            << testCase.name;
        // And it parses back as the one line a script reads.
        EXPECT_TRUE(QJsonDocument::fromJson(statusJson(testCase.report).toUtf8()).isObject())
            << testCase.name;
    }
}

TEST(IsoTimestamp, SecondsWithTheOffsetSpelledOut) {
    for (const auto& [offset, expected] : {std::pair{0, "2026-11-23T04:05:06+00:00"},
                                           {-(5 * 3600 + 30 * 60), "2026-11-23T04:05:06-05:30"}}) {
        const QDateTime time(QDate(2026, 11, 23), QTime(4, 5, 6, 789), Qt::OffsetFromUTC, offset);
        EXPECT_EQ(isoTimestamp(time), QString::fromLatin1(expected));
    }
}

} // namespace
} // namespace brenvik
