// The pure functions behind the views: what they show, worked out without widgets.
#include "../monitor/Matches.h"
#include "views/CommandText.h"
#include "views/LastUpdatedText.h"
#include "views/PreferencesPresentation.h"
#include "views/ProcessListPresentation.h"
#include "views/StatusPresentation.h"

#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

TEST(StatusPresentation, ColourBadgeAndWaitingLineFollowTheRunState) {
    using enum StateColor;
    const QString none;
    const std::tuple<const char*, CodexRunState, StateColor, QString, QString> cases[] = {
        {"one of three running", CodexRunState::observed(3, 1, 2), yellow, u"3"_s, none},
        {"negative running counts as none", CodexRunState::observed(2, -1, 3), green, u"2"_s, none},
        {"99 groups", CodexRunState::observed(99, 0, 99), green, u"99"_s, none},
        {"100 groups", CodexRunState::observed(100, 5, 95), yellow, u"99+"_s, none},
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
    const auto session = test::match;
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
    };
    for (const auto& [name, place, expected] : cases)
        EXPECT_EQ(processRowPlace(place), expected) << name;
}

TEST(CommandText, TrimmedAndShortenedByUserPerceivedCharacters) {
    const QString a = u"a"_s;
    const QString eAcute = u"e\u0301"_s; // e + combining acute: one character
    const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s; // one emoji
    const QString flag = u"\U0001F1F3\U0001F1F4"_s; // regional indicator pair
    const QString dots = u"..."_s;
    const std::tuple<const char*, QString, QString> cases[] = {
        {"empty", u""_s, u""_s},
        {"110 shown whole", a.repeated(110), a.repeated(110)},
        {"111 cut to 107 and three dots", a.repeated(111), a.repeated(107) + dots},
        {"111 combining marks cut between clusters", eAcute.repeated(111),
         eAcute.repeated(107) + dots},
        {"110 family emoji shown whole", family.repeated(110), family.repeated(110)},
        {"111 flags cut between pairs", flag.repeated(111), flag.repeated(107) + dots},
        {"blanks, tabs and line breaks trimmed", u" \t codex exec\r\n"_s, u"codex exec"_s},
        {"inner blanks kept", u" node  codex.js  "_s, u"node  codex.js"_s},
        {"trimmed before counting", u"  "_s + a.repeated(110) + u"\n"_s, a.repeated(110)},
    };
    for (const auto& [name, command, expected] : cases)
        EXPECT_EQ(shownCommand(command), expected) << name;
}

TEST(LastUpdatedText, ChecksUntilTheFirstRefreshThenShowsTheTimeOfDay) {
    const QDateTime afternoon(QDate(2026, 11, 23), QTime(14, 5, 30));
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    const std::tuple<const char*, std::optional<QDateTime>, QLocale, QString> cases[] = {
        {"no refresh yet", std::nullopt, us, u"Checking now"_s},
        {"12-hour clock", afternoon, us, u"Updated 2:05\u202fPM"_s},
        {"24-hour clock", afternoon, QLocale(QLocale::German, QLocale::Germany),
         u"Updated 14:05"_s},
    };
    for (const auto& [name, lastUpdated, locale, expected] : cases) {
        // Locale data differ in the blank before AM/PM; the words are what count.
        const QString text = lastUpdatedText(lastUpdated, locale).replace(u' ', u'\u202f');
        EXPECT_EQ(text, QString(expected).replace(u' ', u'\u202f')) << name;
    }
}

TEST(PreferencesPresentation, LaunchAtLoginStatusReadsForTheUser) {
    const auto plain = StatusTextRole::secondary;
    const QString unavailable = u"Launch-at-login status is unavailable"_s;
    const std::pair<int, LaunchAtLoginPresentation> cases[] = {
        {0, {false, u"Launch at login is off"_s, plain}},
        {1, {true, u"Launch at login is enabled"_s, plain}},
        {2,
         {true, u"Launch at login is waiting for approval by the desktop"_s,
          StatusTextRole::orange}},
        {3, {false, u"Launch at login is not available"_s, plain}},
        {4, {false, unavailable, plain}},
    };
    for (const auto& [status, expected] : cases) {
        const auto shown = launchAtLoginPresentation(static_cast<LaunchAtLoginStatus>(status));
        EXPECT_EQ(shown, expected) << status << ": " << qPrintable(shown.text);
    }
}

} // namespace
} // namespace brenvik
