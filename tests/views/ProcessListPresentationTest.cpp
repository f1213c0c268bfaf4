#include "views/ProcessListPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(ProcessListPresentation, PlaceholderTakesTheFirstRuleThatApplies) {
    const QDateTime someTime = QDateTime::fromSecsSinceEpoch(1'700'000'000);
    const QString failed = u"No process list available while detection is in an error state. "_s;
    using Case = std::tuple<const char*, std::optional<QString>, std::optional<QDateTime>, QString>;
    const Case cases[] = {
        {"error after a refresh", u"ps exited with status 1"_s, someTime,
         failed + u"ps exited with status 1"_s},
        {"error wins over checking", u"boom"_s, std::nullopt, failed + u"boom"_s},
        {"empty error text still says so", u""_s, someTime, failed},
        // One ellipsis character, not three dots.
        {"before the first refresh", std::nullopt, std::nullopt,
         u"Checking the local process list\u2026"_s},
        {"refreshed, nothing found", std::nullopt, someTime,
         u"No matching Codex CLI processes found."_s},
    };
    for (const auto& [name, lastError, lastUpdated, expected] : cases)
        EXPECT_EQ(processListPlaceholder(lastError, lastUpdated), expected) << name;
}

TEST(ProcessListPresentation, DurationTakesTheLargestWholeUnit) {
    const QDateTime now = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC);
    const std::tuple<qint64, QString> cases[] = {
        {0, u"0 s"_s},         {45, u"45 s"_s},
        {59, u"59 s"_s},       {60, u"1 min"_s},
        {119, u"1 min"_s},     {3599, u"59 min"_s},
        {3 * 3600, u"3 h"_s},  {24 * 3600 - 1, u"23 h"_s},
        {24 * 3600, u"1 d"_s}, {53 * 3600, u"2 d"_s},
        {-30, u"0 s"_s}, // the clock was set back
    };
    for (const auto& [seconds, expected] : cases)
        EXPECT_EQ(durationText(now.addSecs(-seconds), now), expected) << seconds << " s";
}

TEST(ProcessListPresentation, RowShowsTheDirectoryTheStatusSinceWhenAndThePIDInItsToolTip) {
    const QString home = u"/home/ada"_s;
    const QDateTime now = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC);
    const auto match = [&](ProcessActivityStatus status, QString cwd, std::optional<qint64> ago,
                           StatusSource source) {
        ProcessMatch m;
        m.pid = 4242;
        m.status = status;
        m.processCount = 3;
        m.cwd = std::move(cwd);
        if (ago)
            m.since = now.addSecs(-*ago);
        m.source = source;
        return m;
    };
    using enum ProcessActivityStatus;
    const std::tuple<const char*, ProcessMatch, QString, QString, QString> cases[] = {
        {"running in a project", match(running, home + u"/src/brenvik"_s, 45, StatusSource::cpu),
         u"~/src/brenvik"_s, u"Running \u00B7 45 s"_s, u"Status from its CPU use"_s},
        {"waiting in the home folder", match(waiting, home, 150, StatusSource::log), u"~"_s,
         u"Waiting for you \u00B7 2 min"_s, u"Status from its session log"_s},
        {"idle outside the home folder", match(idle, u"/srv/app"_s, 3 * 3600, StatusSource::log),
         u"/srv/app"_s, u"Idle \u00B7 3 h"_s, u"Status from its session log"_s},
        {"directory and start unknown", match(idle, QString(), std::nullopt, StatusSource::cpu),
         u"PID 4242"_s, u"Idle"_s, u"Status from its CPU use"_s},
    };
    for (const auto& [name, m, title, capsule, source] : cases) {
        EXPECT_EQ(processRowTitle(m, home), title) << name;
        EXPECT_EQ(statusCapsuleText(m, now), capsule) << name;
        const QStringList toolTip = processRowToolTip(m, home).split(u'\n');
        EXPECT_TRUE(toolTip.contains(u"PID 4242 \u00B7 3 processes"_s)) << name;
        EXPECT_EQ(toolTip.last(), source) << name;
    }
}

TEST(ProcessListPresentation, RowPlaceNamesThePaneThenTheTerminal) {
    const TmuxPane pane{
        u"/tmp/tmux-1000/default"_s, u"work"_s, u"$1"_s, 2, u"@4"_s, u"vim"_s, 1, u"%7"_s};
    const std::tuple<const char*, SessionPlace, QString> cases[] = {
        {"tmux in a terminal",
         {u"xterm"_s, 0x1200007, pane, false},
         u"tmux work:2.1 \u00B7 xterm"_s},
        {"tmux that no terminal shows", {QString(), std::nullopt, pane, false}, u"tmux work:2.1"_s},
        {"an editor", {u"Zed"_s, 0x1600003, std::nullopt, true}, u"Zed"_s},
        {"unknown", {}, QString()},
    };
    for (const auto& [name, place, expected] : cases)
        EXPECT_EQ(processRowPlace(place), expected) << name;
}

} // namespace
} // namespace brenvik
