// The value types: the status's raw values, and a match's identity and hash.
#include "monitor/ProcessMonitoring.h"

#include <QSet>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

TEST(ProcessActivityStatus, ParsesOnlyTheExactRawValues) {
    const struct {
        QString text;
        std::optional<ProcessActivityStatus> expected;
    } cases[] = {
        {QStringLiteral("running"), ProcessActivityStatus::running},
        {QStringLiteral("idle"), ProcessActivityStatus::idle},
        {QStringLiteral("Running"), std::nullopt},
        {QStringLiteral(" idle"), std::nullopt},
        {QString(), std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(processActivityStatus(c.text), c.expected) << c.text.toStdString();
        if (c.expected) {
            EXPECT_EQ(rawValue(*c.expected), c.text);
        }
    }
}

TEST(ProcessMatch, EqualMatchesHashAlikeWhateverTheSignOfZero) {
    for (const auto& [cpuPercent, cpuTime] : {std::pair{-0.0, 30.0}, {1.5, -0.0}, {-0.0, -0.0}}) {
        SCOPED_TRACE(::testing::Message() << cpuPercent << " " << cpuTime);
        const ProcessMatch negative{.pid = qint64(1) << 40,
                                    .command = QStringLiteral("/usr/bin/codex"),
                                    .status = ProcessActivityStatus::running,
                                    .instantaneousCPUPercent = cpuPercent,
                                    .cumulativeCPUTime = cpuTime,
                                    .memberCount = 2,
                                    .processCount = 3,
                                    .cwd = QStringLiteral("/w"),
                                    .startedAt = {},
                                    .since = {},
                                    .source = StatusSource::cpu,
                                    .lastMessage = {}};
        ProcessMatch positive = negative;
        positive.instantaneousCPUPercent += 0.0; // -0.0 + 0.0 is +0.0
        positive.cumulativeCPUTime += 0.0;
        ASSERT_EQ(negative, positive);
        EXPECT_EQ(qHash(negative, 99), qHash(positive, 99));
        EXPECT_EQ(QSet<ProcessMatch>({negative, positive}).size(), 1);
        EXPECT_EQ(negative.id(), qint64(1) << 40);
    }
}

} // namespace
} // namespace brenvik
