// The value types: the status's raw values, and a match's identity,
// equality and hash.
#include "monitor/ProcessMonitoring.h"

#include <QSet>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

TEST(ProcessActivityStatus, ParsesOnlyTheExactRawValues) {
    const struct {
        const char* name;
        QString text;
        std::optional<ProcessActivityStatus> expected;
    } cases[] = {
        {"running", QStringLiteral("running"), ProcessActivityStatus::running},
        {"idle", QStringLiteral("idle"), ProcessActivityStatus::idle},
        {"capitalised", QStringLiteral("Running"), std::nullopt},
        {"upper case", QStringLiteral("IDLE"), std::nullopt},
        {"leading blank", QStringLiteral(" idle"), std::nullopt},
        {"trailing blank", QStringLiteral("running "), std::nullopt},
        {"empty", QString(), std::nullopt},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        EXPECT_EQ(processActivityStatus(testCase.text), testCase.expected);
    }
}

TEST(ProcessActivityStatus, RawValueRoundTripsAndHashesAsItsText) {
    for (const auto status : {ProcessActivityStatus::running, ProcessActivityStatus::idle}) {
        SCOPED_TRACE(rawValue(status).toStdString());
        EXPECT_EQ(processActivityStatus(rawValue(status)), status);
        EXPECT_EQ(qHash(status, 7), qHash(rawValue(status), 7));
    }
    EXPECT_EQ(rawValue(ProcessActivityStatus::running), QStringLiteral("running"));
    EXPECT_EQ(rawValue(ProcessActivityStatus::idle), QStringLiteral("idle"));
}

ProcessMatch baseMatch() {
    return {42, QStringLiteral("/usr/bin/codex"), ProcessActivityStatus::running, 1.5, 30.0, 2};
}

TEST(ProcessMatch, EqualityCoversEveryField) {
    const struct {
        const char* name;
        void (*change)(ProcessMatch&);
    } cases[] = {
        {"pid", [](ProcessMatch& m) { m.pid = 43; }},
        {"command", [](ProcessMatch& m) { m.command = QStringLiteral("/usr/bin/Codex"); }},
        {"status", [](ProcessMatch& m) { m.status = ProcessActivityStatus::idle; }},
        {"CPU percent", [](ProcessMatch& m) { m.instantaneousCPUPercent = 1.6; }},
        {"CPU time", [](ProcessMatch& m) { m.cumulativeCPUTime = 30.5; }},
        {"member count", [](ProcessMatch& m) { m.memberCount = 3; }},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        ProcessMatch changed = baseMatch();
        testCase.change(changed);
        EXPECT_NE(changed, baseMatch());
        EXPECT_NE(QList<ProcessMatch>{changed}, QList<ProcessMatch>{baseMatch()});
    }
    EXPECT_EQ(baseMatch(), baseMatch());
}

TEST(ProcessMatch, EqualMatchesHashAlikeWhateverTheSignOfZero) {
    const struct {
        const char* name;
        double cpuPercent;
        double cpuTime;
    } cases[] = {
        {"negative zero CPU percent", -0.0, 30.0},
        {"negative zero CPU time", 1.5, -0.0},
        {"both negative zero", -0.0, -0.0},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        ProcessMatch negative = baseMatch();
        negative.instantaneousCPUPercent = testCase.cpuPercent;
        negative.cumulativeCPUTime = testCase.cpuTime;
        ProcessMatch positive = negative;
        positive.instantaneousCPUPercent += 0.0; // -0.0 + 0.0 is +0.0
        positive.cumulativeCPUTime += 0.0;
        ASSERT_EQ(negative, positive);
        EXPECT_EQ(qHash(negative, 0), qHash(positive, 0));
        EXPECT_EQ(qHash(negative, 99), qHash(positive, 99));
        EXPECT_EQ(QSet<ProcessMatch>({negative, positive}).size(), 1);
    }
}

TEST(ProcessMatch, IdIsThePidAtAnySize) {
    for (const qint64 pid : {qint64(1), qint64(2147483647), qint64(2147483648), qint64(1) << 40}) {
        SCOPED_TRACE(pid);
        ProcessMatch match = baseMatch();
        match.pid = pid;
        EXPECT_EQ(match.id(), pid);
    }
}

} // namespace
} // namespace brenvik
