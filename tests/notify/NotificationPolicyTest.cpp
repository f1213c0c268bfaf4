// What Brenvik announces as sessions change and as the plan's limits fill,
// how the notices replace and close one another on the server, and which
// session a notice's default action goes to.
#include "../monitor/Matches.h"
#include "notify/DesktopNotifier.h"
#include "notify/LimitNoticePolicy.h"
#include "notify/NoticeTarget.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {

constexpr auto running = ProcessActivityStatus::running;
constexpr auto waiting = ProcessActivityStatus::waiting;
constexpr auto idle = ProcessActivityStatus::idle;

QDateTime at(qint64 seconds) {
    return QDateTime::fromSecsSinceEpoch(1'700'000'000 + seconds, Qt::UTC);
}

ProcessMatch session(qint64 pid, ProcessActivityStatus status, qint64 sinceSeconds,
                     const char* project, const char* message = "") {
    ProcessMatch match = test::match(pid, status, u"/home/u/" + QString::fromLatin1(project));
    match.since = at(sinceSeconds);
    match.source = StatusSource::log;
    match.lastMessage = QString::fromLatin1(message);
    return match;
}

struct Step {
    qint64 at;
    QList<ProcessMatch> matches;
    QString expected = {}; // "summary | body" of each notice shown, then "close PID"; " ; " between
    bool failed = false;
    bool enabled = true;
};

QStringList outcome(const NotificationPolicy::Decision& decision) {
    QStringList out;
    for (const Announcement& notice : decision.show)
        out.append(notice.summary + u" | " + notice.body);
    for (const qint64 pid : decision.stoppedWaiting)
        out.append(u"close " + QString::number(pid));
    return out;
}

TEST(NotificationPolicy, WhatIsAnnounced) {
    const auto a = [](ProcessActivityStatus s, qint64 since, const char* m = "") {
        return session(1, s, since, "alpha", m);
    };
    const auto b = [](ProcessActivityStatus s, qint64 since) {
        return session(2, s, since, "beta");
    };
    const QString alphaWaits =
        u"Codex is waiting for you \u00B7 alpha | A command needs your approval."_qs;
    // Started at 1 s, burning a core until 6 s; no log yet to say otherwise.
    const auto startingUp = [](ProcessActivityStatus s, qint64 since) {
        ProcessMatch match = session(3, s, since, "gamma");
        match.source = StatusSource::cpu;
        match.startedAt = at(1);
        return match;
    };
    const struct {
        const char* name;
        QList<Step> steps;
    } cases[] = {
        {"nothing about what was so at start",
         {{0, {a(idle, -100), b(waiting, -5)}}, {2, {a(idle, -100), b(waiting, -5)}}}},
        {"a 9 s turn is no news, nor a short or idle session that ends",
         {{0, {a(idle, -100), b(running, -1)}},
          {2, {a(running, 1)}},
          {11, {a(idle, 10)}},
          {13, {}}}},
        {"judged by its CPU: a TUI's start-up is no work, 10 s of work after that are",
         {{0, {}},
          {2, {startingUp(running, 1)}},
          {16, {startingUp(idle, 15)}},
          {20, {startingUp(running, 19)}},
          {30, {startingUp(idle, 29)}, u"Codex finished \u00B7 gamma | Worked 10 s"_qs}}},
        {"a session that ends with its turn, as codex exec does",
         {{0, {a(running, -14, "Done.")}},
          {2, {}, u"Codex finished \u00B7 alpha | Worked 16 s\nDone."_qs}}},
        {"two sessions in one refresh share one notice",
         {{0, {a(running, -60), b(running, -60)}},
          {2,
           {a(idle, 1), b(idle, 2)},
           u"Codex finished \u00B7 alpha, beta | 2 sessions are done."_qs}}},
        {"nothing while detection fails, nor when it comes back",
         {{0, {a(running, -60)}}, {2, {}, {}, true}, {4, {a(running, -60)}}}},
        {"turned off: beta's work not announced, but alpha's waiting notice still closes",
         {{0, {a(running, -60), b(running, -60)}},
          {2, {a(waiting, 1), b(running, -60)}, alphaWaits},
          {4, {a(idle, 3), b(idle, 3)}, u"close 1"_qs, false, false}}},
        {"a waiting session that went away",
         {{0, {a(running, -60)}}, {2, {a(waiting, 1)}, alphaWaits}, {4, {}, u"close 1"_qs}}},
    };
    for (const auto& c : cases) {
        NotificationPolicy policy;
        for (const Step& step : c.steps) {
            const auto decision =
                policy.update(step.matches, step.failed, step.enabled, at(step.at));
            EXPECT_EQ(outcome(decision).join(u" ; ").toStdString(), step.expected.toStdString())
                << c.name << " at " << step.at << " s";
        }
    }
}

// A server that records calls and hands out ids 1, 2, 3…
class FakeBus : public NotificationBus {
public:
    void notify(quint32 replacesId, const QString& summary, const QString&,
                std::function<void(quint32)> shown) override {
        const quint32 id = replacesId ? replacesId : ++m_next;
        calls.append(
            QStringLiteral("notify %1 replaces %2: %3").arg(id).arg(replacesId).arg(summary));
        if (answers)
            shown(id);
    }
    void close(quint32 id) override { calls.append(QStringLiteral("close %1").arg(id)); }

    QStringList calls;
    bool answers = true; // false: no server on the bus
private:
    quint32 m_next = 0;
};

Announcement notice(Announcement::Kind kind, QList<qint64> pids, const char* summary) {
    return {kind, std::move(pids), QString::fromLatin1(summary), QString()};
}

TEST(DesktopNotifier, OneNoticePerSessionReplacedAndClosed) {
    using Kind = Announcement::Kind;
    FakeBus bus;
    DesktopNotifier notifier(bus);
    notifier.apply({{notice(Kind::waiting, {1, 2}, "waiting a, b")}, {}});
    notifier.apply({{}, {1}}); // 2 still waits: the notice stays
    notifier.apply({{notice(Kind::finished, {1}, "finished a")}, {}});
    notifier.apply({{}, {2}});
    notifier.apply({{notice(Kind::waiting, {3}, "waiting c")}, {}});
    notifier.forget(2); // the user dismissed it
    notifier.apply({{}, {3}});
    EXPECT_EQ(bus.calls, (QStringList{u"notify 1 replaces 0: waiting a, b"_qs,
                                      u"notify 1 replaces 1: finished a"_qs,
                                      u"notify 2 replaces 0: waiting c"_qs}))
        << "the finished notice replaced the waiting one it shared with session 2";
    // What a click on a notice can go to: the sessions it names.
    EXPECT_EQ(notifier.sessionsOf(1), QList<qint64>{1});
    EXPECT_TRUE(notifier.sessionsOf(2).isEmpty()) << "closed";
    notifier.apply({{notice(Kind::waiting, {5, 4}, "waiting e, d")}, {}});
    EXPECT_EQ(notifier.sessionsOf(3), (QList<qint64>{5, 4}));

    FakeBus silent;
    silent.answers = false;
    DesktopNotifier quiet(silent);
    quiet.apply({{notice(Kind::waiting, {1}, "waiting a")}, {}});
    quiet.apply({{}, {1}});
    EXPECT_EQ(silent.calls, QStringList{u"notify 1 replaces 0: waiting a"_qs})
        << "no server: nothing to close, nothing retried";
}

TEST(NoticeTarget, TheFirstThatWaitsElseTheFirstStillThere) {
    using enum ProcessActivityStatus;
    using test::match;
    const QList<ProcessMatch> now{match(1, idle), match(2, waiting), match(3, running),
                                  match(4, waiting)};
    const std::tuple<const char*, QList<qint64>, std::optional<qint64>> cases[] = {
        {"the first named that waits, not the first in the list", {4, 2}, 4},
        {"a waiting one after others", {1, 3, 2}, 2},
        {"none waits: the first named", {3, 1}, 3},
        {"the first named ended: the next still there", {9, 1}, 1},
        {"all ended", {8, 9}, std::nullopt},
        {"a notice it no longer knows", {}, std::nullopt},
    };
    for (const auto& [name, named, expected] : cases)
        EXPECT_EQ(noticeTarget(named, now), expected) << name;
}

const QDateTime kNow = QDateTime(QDate(2026, 11, 24), QTime(12, 0), Qt::LocalTime).toUTC();

// One account's limits; its 5 h window resets `resetInMinutes` after kNow.
QList<AccountLimits> limitsAt(double fiveHours, double week, QString reached = {},
                              int resetInMinutes = 60) {
    const RateLimits limits{RateLimitWindow{fiveHours, 300, kNow.addSecs(resetInMinutes * 60)},
                            RateLimitWindow{week, 10080, kNow.addDays(3)},
                            {},
                            reached,
                            kNow};
    return {{QStringLiteral("/h"), limits}};
}

// Refresh after refresh: each step's name, limits, whether notices are on,
// the summaries it announces, and its time in minutes after kNow.
TEST(LimitNoticePolicy, OnceAt90AndOnceReached) {
    const std::tuple<const char*, QList<AccountLimits>, bool, QStringList, int> steps[] = {
        {"below 90", limitsAt(42, 13), true, {}, 0},
        {"passes 90", limitsAt(92, 13), true, {u"Codex 5 h limit at 92 % · resets 13:00"_qs}, 0},
        {"still above 90", limitsAt(93, 13), true, {}, 0},
        {"reached", limitsAt(100, 13), true, {u"Codex 5 h limit reached · resets 13:00"_qs}, 0},
        {"reached again", limitsAt(100, 13, u"rate_limit_reached"_qs), true, {}, 0},
        {"the week passes 90 while off", limitsAt(100, 91), false, {}, 0},
        {"on again: the week is not announced late", limitsAt(100, 92), true, {}, 0},
        {"after the reset: a new period",
         limitsAt(95, 92, {}, 181),
         true,
         {u"Codex 5 h limit at 95 % · resets 15:01"_qs},
         61},
    };
    LimitNoticePolicy policy;
    for (const auto& [name, limits, enabled, expected, minutes] : steps) {
        QStringList summaries;
        for (const LimitNotice& notice : policy.update(limits, enabled, kNow.addSecs(minutes * 60)))
            summaries << notice.summary;
        EXPECT_EQ(summaries, expected) << name;
    }
}

} // namespace
} // namespace brenvik
