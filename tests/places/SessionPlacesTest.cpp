// Each session's place is looked up once, when it first appears.
#include "places/SessionPlaces.h"

#include <gtest/gtest.h>
#include <vector>

namespace brenvik {
namespace {

TEST(SessionPlaces, LooksUpOnlySessionsSeenForTheFirstTime) {
    std::vector<qint64>
        asked; // not QList: Qt 6.4 compares an emptied one with memcmp(…, nullptr, 0)
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
        std::vector<qint64>
            asked; // not QList: Qt 6.4 compares an emptied one with memcmp(…, nullptr, 0)
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
