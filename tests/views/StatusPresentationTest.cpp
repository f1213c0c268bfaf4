#include "views/StatusPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(StatusPresentation, ColourBadgeAndWaitingLineFollowTheRunState) {
    using enum StateColor;
    const QString none;
    const std::tuple<const char*, CodexRunState, StateColor, QString, QString> cases[] = {
        {"three idle", CodexRunState::observed(3, 0, 3), green, u"3"_s, none},
        {"one of three running", CodexRunState::observed(3, 1, 2), yellow, u"3"_s, none},
        {"negative running counts as none", CodexRunState::observed(2, -1, 3), green, u"2"_s, none},
        {"99 groups", CodexRunState::observed(99, 0, 99), green, u"99"_s, none},
        {"100 groups", CodexRunState::observed(100, 5, 95), yellow, u"99+"_s, none},
        {"thousands, no separators", CodexRunState::observed(12345, 0, 0), green, u"99+"_s, none},
        {"one waits alone", CodexRunState::observed(1, 0, 0, 1, {u"brenvik"_s}), violet, u"1"_s,
         u"Waiting for you: brenvik"_s},
        {"waiting wins over running", CodexRunState::observed(4, 2, 0, 2, {u"a"_s, u"~"_s}), violet,
         u"4"_s, u"Waiting for you: a, ~"_s},
        {"error", CodexRunState::error(u"ps failed"_s), red, u"!"_s, none},
        {"nothing found", CodexRunState::idle(), green, QString(), none},
    };
    for (const auto& [name, state, color, badge, waiting] : cases) {
        EXPECT_EQ(stateColor(state), color) << name;
        EXPECT_EQ(badgeText(state), badge) << name;
        EXPECT_EQ(waitingText(state), waiting) << name;
    }
}

TEST(StatusPresentation, MenuOffersWaitingThenRunningSessionsAndTheWaitingLineTheFirst) {
    using enum ProcessActivityStatus;
    const auto session = [](qint64 pid, ProcessActivityStatus status, QString cwd) {
        ProcessMatch match;
        match.pid = pid;
        match.status = status;
        match.cwd = std::move(cwd);
        return match;
    };
    const QString home = u"/home/ada"_s;
    const struct {
        const char* name;
        QList<ProcessMatch> matches;
        QList<SessionMenuItem> items;
        std::optional<qint64> waiting;
    } cases[] = {
        {"none", {}, {}, std::nullopt},
        {"idle ones are not offered", {session(1, idle, home + u"/a"_s)}, {}, std::nullopt},
        {"waiting first, then running, each in list order",
         {session(1, running, home + u"/api"_s), session(2, idle, home + u"/docs"_s),
          session(3, waiting, home + u"/website"_s), session(4, running, QString()),
          session(5, waiting, home)},
         {{3, u"website \u00B7 Waiting for you"_s},
          {5, u"~ \u00B7 Waiting for you"_s},
          {1, u"api \u00B7 Running"_s},
          {4, u"PID 4 \u00B7 Running"_s}},
         3},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(sessionMenuItems(c.matches, home), c.items) << c.name;
        EXPECT_EQ(firstWaitingSession(c.matches), c.waiting) << c.name;
    }
}

} // namespace
} // namespace brenvik
