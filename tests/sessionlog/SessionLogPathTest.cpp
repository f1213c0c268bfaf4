#include "sessionlog/SessionLogPath.h"

#include <QString>
#include <gtest/gtest.h>

namespace brenvik {
namespace {

TEST(SessionLogPath, Cases) {
    const struct {
        const char16_t* path;
        bool expected;
        const char16_t* codexHome = u"";
    } cases[] = {
        {u"/home/u/.codex/sessions/2026/11/23/rollout-2026-11-23T13-27-26-01a2.jsonl", true,
         u"/home/u/.codex"},
        {u"/home/u/.codex/sessions/2026/11/23/rollout-2026-11-23T13-27-26-01a2.jsonl (deleted)",
         true, u"/home/u/.codex"},
        {u"/srv/codex home/sessions/2026/01/02/rollout-x.jsonl", true, u"/srv/codex home"},
        {u"/work/sessions/x/sessions/2026/01/02/rollout-x.jsonl", true, u"/work/sessions/x"},
        {u"/sessions/2026/01/02/rollout-x.jsonl", true, u"/"},
        {u"/home/u/.codex/sessions/2026/11/23/rollout-2026-11-23T13-27-26-01a2.jsonl.zst", false},
        {u"/home/u/.codex/archived_sessions/rollout-2026-11-23T13-27-26-01a2.jsonl", false},
        {u"/home/u/.codex/history.jsonl", false},
        {u"/home/u/.codex/sessions/2026/11/23/rollout-.jsonl", false},
        {u"/home/u/.codex/sessions/2026/11/23/notes-rollout-1.jsonl", false},
        {u"/home/u/proj/rollout-1.jsonl", false},
        {u"sessions/2026/11/23/rollout-1.jsonl", false},
        {u"socket:[12345]", false},
        {u"", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isSessionLogPath(QStringView(c.path)), c.expected)
            << QString::fromUtf16(c.path).toStdString();
        EXPECT_EQ(codexHomeOf(QStringView(c.path)), QStringView(c.codexHome))
            << QString::fromUtf16(c.path).toStdString();
    }
}

} // namespace
} // namespace brenvik
