// The widgets, offscreen, on a scripted monitor and private preference
// files: the control panel, its preference switches and the tray's popover.
#include "ViewTestSupport.h"
#include "places/SessionPlaceTracker.h"
#include "views/CommandText.h"
#include "views/ControlPanelView.h"
#include "views/MenuPopoverView.h"
#include "views/PreferencesControlsView.h"
#include "views/PreferencesPresentation.h"
#include "views/ProcessListPresentation.h"
#include "views/ProcessListSectionView.h"
#include "views/ProcessRowView.h"
#include "views/ProcessRowsView.h"
#include "views/StatusPresentation.h"
#include "views/StatusViews.h"
#include "views/ToggleSwitch.h"
#include "views/ViewStyle.h"

#include <QDir>
#include <QFileInfo>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;
using namespace brenvik::test;

// Session 1001 runs in tmux in an xterm, 1002 in an editor; the others
// were not found. Called on the tracker's worker thread.
PlaceLookup placeOf(const SessionQuery& query) {
    const TmuxPane pane{
        u"/tmp/tmux-1000/default"_s, u"work"_s, u"$1"_s, 2, u"@4"_s, u"vim"_s, 1, u"%7"_s};
    if (query.pid == 1001)
        return {SessionPlace{u"xterm"_s, 0x1200007, pane, false}, {}};
    if (query.pid == 1002)
        return {SessionPlace{u"Zed"_s, 0x1600003, std::nullopt, true}, {}};
    return {std::nullopt, u"not in a terminal"_s};
}

class ControlPanel : public ::testing::Test {
protected:
    ControlPanel() {
        m_panel.show();
        settle();
    }

    // A refresh, and the lookups of the sessions it brought.
    [[nodiscard]] bool refreshWith(QList<DetectedProcessSample> samples,
                                   QList<CodexProcessMonitor::LogState> logs = {}) {
        if (!m_scripted.refreshWith(std::move(samples), std::move(logs)))
            return false;
        settle();
        const bool found = QTest::qWaitFor([&] { return m_places.isIdle(); }, 20'000);
        settle();
        return found;
    }

    ScriptedMonitor m_scripted;
    SessionPlaceTracker m_places{m_scripted.monitor, placeOf,
                                 [](const SessionQuery&, const std::optional<SessionPlace>&) {
                                     return GoResult{GoResult::Outcome::went, {}};
                                 }};
    PrivatePreferences m_preferences;
    RecordingActions m_actions;
    ControlPanelView m_panel{m_scripted.monitor,
                             m_preferences.launchAtLogin,
                             m_preferences.appVisibility,
                             m_actions,
                             nullptr,
                             nullptr,
                             &m_places};
};

TEST_F(ControlPanel, PlaceholderAndErrorLineFollowTheMonitor) {
    const QString failure =
        u"Could not read the process table: a very long failure text that cannot fit on one "
        u"line of the control panel however wide the font"_s;
    const CodexProcessMonitor& monitor = m_scripted.monitor;
    const std::tuple<const char*, std::function<bool()>, bool> cases[] = {
        {"before the first refresh", [] { return true; }, false},
        {"after a failure", [&] { return m_scripted.failWith(failure); }, true},
        {"no match", [&] { return m_scripted.refreshWith({}); }, false},
    };
    for (const auto& [name, reach, failed] : cases) {
        ASSERT_TRUE(reach()) << name;
        settle();
        EXPECT_EQ(m_panel.processList()->form(), ProcessListForm::placeholder) << name;
        EXPECT_EQ(m_panel.processList()->placeholderText(),
                  processListPlaceholder(monitor.lastError(), monitor.lastUpdated()))
            << name;
        ElidingLabel* line = m_panel.errorLine();
        EXPECT_EQ(line->isVisible(), failed) << name;
        if (failed) {
            EXPECT_EQ(line->fullText(), failure);
            // One line: shortened to fit, never wrapped.
            EXPECT_FALSE(line->wordWrap());
            EXPECT_LE(line->fontMetrics().horizontalAdvance(line->text()), line->width());
            EXPECT_TRUE(line->text().endsWith(QChar(0x2026)));
            EXPECT_EQ(m_panel.header()->badgeText(), u"!"_s);
        }
    }
}

TEST_F(ControlPanel, RowsCutOffByAGrownPreferencesSectionScroll) {
    ASSERT_TRUE(
        m_scripted.refreshWith({group(1, u"codex"_s), group(2, u"codex"_s), group(3, u"codex"_s)}));
    ProcessListSectionView* list = m_panel.processList();
    // A file where the autostart folder belongs makes launch at login fail.
    QFile blocker(QFileInfo(m_preferences.launchAtLogin.entry().filePath()).path());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    for (const bool failing : {true, false}) {
        m_preferences.policy.accept = !failing;
        m_preferences.appVisibility.setShowDockIcon(false);
        if (!failing)
            blocker.remove();
        m_preferences.launchAtLogin.setEnabled(true);
        // The layout settles over several turns of the event loop.
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return (list->height() < list->rowsView()->sizeHint().height()) == failing; },
            5000))
            << "two failure texts take room from the list";
        EXPECT_EQ(list->form(),
                  failing ? ProcessListForm::scrollingList : ProcessListForm::plainStack)
            << failing;
    }
}

TEST_F(ControlPanel, ThreeRowsStackAndAFourthScrolls) {
    const auto texts = [](QWidget* row) {
        QStringList texts;
        for (const QLabel* label : row->findChildren<QLabel*>()) {
            if (!label->isHidden())
                texts.append(label->text());
        }
        return texts;
    };
    // Row 1 runs, row 2 has waited for two minutes, row 3 has no known
    // directory; each row shows its directory (or PID), status, command and
    // place; row 2's log names its model and context.
    const CodexProcessMonitor& monitor = m_scripted.monitor;
    for (const int count : {3, 4, 2}) {
        const bool scrolls = count > 3;
        QList<DetectedProcessSample> groups;
        QList<CodexProcessMonitor::LogState> logs;
        for (int i = 1; i <= count; ++i) {
            groups.append(group(1000 + i, u"  codex --session %1 "_s.arg(i) + QString(120, u'x'),
                                i == 1 ? 50.0 : 0.0));
            if (i != 3)
                groups.last().cwd = QDir::homePath() + u"/projects/p%1"_s.arg(i);
            logs.append(i == 2 ? waitingLog(test::at(-120'000)) : std::nullopt);
            if (i == 2) {
                logs.last()->model = u"gpt-5.5"_s;
                logs.last()->tokens = TokenUsage{500'000, 95'608, 258'400};
            }
        }
        ASSERT_TRUE(refreshWith(groups, logs));
        ProcessListSectionView* list = m_panel.processList();
        EXPECT_EQ(list->form(),
                  scrolls ? ProcessListForm::scrollingList : ProcessListForm::plainStack)
            << count;
        EXPECT_EQ(list->scrollArea()->isVisible() &&
                      list->scrollArea()->verticalScrollBar()->isVisible(),
                  scrolls)
            << count;
        const QList<ProcessRowView*> rows = list->rowsView()->rows();
        ASSERT_EQ(rows.size(), count);
        for (int i = 0; i < count; ++i) {
            SCOPED_TRACE(::testing::Message() << count << " matches, row " << i);
            EXPECT_TRUE(rows[i]->isVisible());
            EXPECT_GE(rows[i]->height(), ProcessRowView::kHeight);
            const ProcessMatch& match = monitor.matches()[i];
            const QString place =
                processRowPlace(m_places.placeOf(1001 + i).value_or(SessionPlace{}));
            EXPECT_EQ(place.isEmpty(), i >= 2) << "sessions 1001 and 1002 were found";
            QStringList expected{processRowTitle(match),
                                 statusCapsuleText(match, *monitor.lastUpdated()),
                                 shownCommand(groups[i].command),
                                 i == 1 ? u"gpt-5.5 \u00B7 63 % context left"_s : QString(), place};
            expected.removeAll(QString());
            EXPECT_EQ(texts(rows[i]), expected);
            EXPECT_EQ(rows[i]->toolTip(), processRowToolTip(match));
        }
        const QLabel* command = rows[0]->findChild<CommandLabel*>();
        EXPECT_TRUE(command->textInteractionFlags() & Qt::TextSelectableByMouse);
    }
}

TEST_F(ControlPanel, ARowGoesToItsSessionAndTheListSaysWhatHappened) {
    ASSERT_TRUE(refreshWith({group(1001, u"codex"_s), group(1002, u"codex"_s)}));
    const QList<ProcessRowView*> rows = m_panel.processList()->rowsView()->rows();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_FALSE(rows[0]->goToButton()->isVisible()) << "shown only on the row in use";
    m_panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_panel));
    rows[1]->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return rows[1]->goToButton()->isVisible(); }));
    QTest::mouseClick(rows[1]->goToButton(), Qt::LeftButton);
    EXPECT_EQ(m_actions.wentTo, std::vector<qint64>{1002}) << "its Go to button";
    rows[1]->setFocus();
    QTest::keyClick(rows[1], Qt::Key_Return);
    EXPECT_EQ(m_actions.wentTo, (std::vector<qint64>{1002, 1002})) << "Enter on the selected row";
    EXPECT_FALSE(rows[0]->goToButton()->isVisible()) << "on a row not in use";

    using enum GoResult::Outcome;
    const std::tuple<const char*, GoResult, NamedColor> results[] = {
        {"failed: the reason in red",
         {failed, u"Cannot go to the session: it has ended"_s},
         NamedColor::red},
        {"only its pane selected: where it is",
         {selected, u"In xterm, tmux work:2.1: its pane is selected; the window was not raised"_s},
         NamedColor::secondary},
        {"went: nothing to say", {went, {}}, NamedColor::secondary},
    };
    ElidingLabel* line = m_panel.goResultLine();
    rows[1]->setFocus();
    for (const auto& [name, result, color] : results) {
        m_panel.showGoResult(result);
        settle();
        EXPECT_TRUE(rows[1]->hasFocus()) << name << ": the selected row keeps the focus";
        EXPECT_EQ(line->isVisible(), !result.text.isEmpty()) << name;
        if (line->isVisible()) {
            EXPECT_EQ(line->color(), color) << name;
            EXPECT_GT(line->mapTo(&m_panel, QPoint()).y(),
                      m_panel.processList()->mapTo(&m_panel, QPoint()).y())
                << name << ": under the list";
        }
    }
}

TEST_F(ControlPanel, RAlonePressesRefreshNow) {
    m_panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_panel));
    QTest::keyClick(&m_panel, Qt::Key_R, Qt::ControlModifier);
    QTest::keyClick(&m_panel, Qt::Key_R, Qt::AltModifier);
    QTest::qWait(300);
    EXPECT_EQ(m_actions.refreshNowCalls, 0) << "only R alone is the shortcut";
    QTest::keyClick(&m_panel, Qt::Key_R);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_actions.refreshNowCalls == 1; }, 20'000));
    QTest::mouseClick(m_panel.quitButton(), Qt::LeftButton);
    EXPECT_EQ(m_actions.quitCalls, 1);
}

TEST_F(ControlPanel, RebuildsOnlyAfterAPublishAndOncePerTurn) {
    const int panel = m_panel.updateCount();
    const int list = m_panel.processList()->updateCount();
    const int preferences = m_panel.preferences()->updateCount();
    QTest::qWait(100);
    EXPECT_EQ(m_panel.updateCount(), panel);
    EXPECT_EQ(m_panel.processList()->updateCount(), list);
    EXPECT_EQ(m_panel.preferences()->updateCount(), preferences);

    // Several publishes in one turn: one update.
    m_preferences.launchAtLogin.setStatus(LaunchAtLoginStatus::enabled);
    m_preferences.launchAtLogin.setStatus(LaunchAtLoginStatus::requiresApproval);
    m_preferences.appVisibility.setShowDockIcon(false);
    settle();
    EXPECT_EQ(m_panel.preferences()->updateCount(), preferences + 1);
    EXPECT_EQ(m_panel.updateCount(), panel) << "the monitor did not publish";

    // A refresh publishes at its start and at its end.
    ASSERT_TRUE(m_scripted.refreshWith({group(1, u"codex"_s)}));
    settle();
    EXPECT_GE(m_panel.updateCount(), panel + 1);
    EXPECT_LE(m_panel.updateCount(), panel + 2);
    EXPECT_EQ(m_panel.processList()->updateCount() - list, m_panel.updateCount() - panel);
}

class PreferencesControls : public ::testing::Test {
protected:
    PreferencesControls() {
        m_view.resize(384, 200);
        m_view.show();
        settle();
    }
    void click(ToggleSwitch* toggle) {
        QTest::mouseClick(toggle, Qt::LeftButton);
        settle();
    }

    PrivatePreferences m_preferences;
    PreferencesControlsView m_view{m_preferences.launchAtLogin, m_preferences.appVisibility};
};

TEST_F(PreferencesControls, LaunchSwitchShowsThePublishedStatusNotTheClick) {
    ToggleSwitch* toggle = m_view.launchAtLoginSwitch();
    ASSERT_FALSE(toggle->isChecked());
    click(toggle);
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_EQ(m_preferences.launchAtLogin.status(), LaunchAtLoginStatus::enabled);

    // Block the write: the click asks, the failure shows, the switch stays at
    // the re-read status.
    const QString entry = m_preferences.launchAtLogin.entry().filePath();
    click(toggle);
    ASSERT_FALSE(QFile::exists(entry));
    const QString folder = entry.section(u'/', 0, -2);
    ASSERT_TRUE(QDir(folder).removeRecursively());
    ASSERT_TRUE(QFile(folder).open(QIODevice::WriteOnly));
    click(toggle);
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_TRUE(m_view.launchErrorLabel()->isVisible());
    EXPECT_EQ(m_view.launchErrorLabel()->text(), *m_preferences.launchAtLogin.lastError());
    EXPECT_EQ(m_view.launchErrorLabel()->color(), NamedColor::red);
    EXPECT_EQ(m_view.launchStatusLabel()->text(),
              launchAtLoginPresentation(LaunchAtLoginStatus::notRegistered).text);

    // Approval pending shows on, in orange; a click asks for off.
    ASSERT_TRUE(QFile::remove(folder));
    m_preferences.launchAtLogin.setStatus(LaunchAtLoginStatus::requiresApproval);
    settle();
    ASSERT_TRUE(toggle->isChecked());
    EXPECT_EQ(m_view.launchStatusLabel()->text(),
              launchAtLoginPresentation(LaunchAtLoginStatus::requiresApproval).text);
    EXPECT_EQ(m_view.launchStatusLabel()->color(), NamedColor::orange);
    click(toggle);
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_FALSE(m_view.launchErrorLabel()->isVisible());
}

TEST_F(PreferencesControls, DockSwitchBindsToThePreference) {
    ToggleSwitch* toggle = m_view.dockSwitch();
    ASSERT_TRUE(toggle->isChecked());
    EXPECT_EQ(toggle->accessibleName(), u"Show in taskbar while running"_s);
    EXPECT_EQ(m_view.dockDescriptionLabel()->text(), dockVisibilityDescription(true));
    // Space toggles like a click.
    toggle->setFocus();
    QTest::keyClick(toggle, Qt::Key_Space);
    settle();
    EXPECT_FALSE(m_preferences.appVisibility.showDockIcon());
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_EQ(m_view.dockDescriptionLabel()->text(), dockVisibilityDescription(false));
    EXPECT_FALSE(m_view.dockErrorLabel()->isVisible());

    // Refused: the switch keeps the choice and the message shows in red, on
    // at most two lines; the next accepted switch clears it.
    m_preferences.policy.accept = false;
    click(toggle);
    QLabel* error = m_view.dockErrorLabel();
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_TRUE(error->isVisible());
    EXPECT_EQ(error->text(), AppVisibilityController::kRefusalMessage.toString());
    EXPECT_TRUE(error->wordWrap());
    EXPECT_LE(error->height(), error->fontMetrics().lineSpacing() * 2 + 4);
    m_preferences.policy.accept = true;
    click(toggle);
    EXPECT_FALSE(error->isVisible());
}

TEST(MenuPopoverView, HeaderFollowsTheMonitorTheWaitingLineGoesThereAndTheButtonOpensThePanel) {
    ScriptedMonitor scripted;
    RecordingActions actions;
    MenuPopoverView popover(scripted.monitor, actions);
    popover.adjustSize();
    popover.show();
    EXPECT_EQ(popover.width(), 300);

    // The header shows what the presentation makes of the run state; the
    // waiting line goes to the session that waits.
    auto waits = group(8, u"codex"_s);
    waits.cwd = QDir::homePath() + u"/projects/brenvik"_s;
    const std::pair<const char*, std::function<bool()>> cases[] = {
        {"before the first refresh", [] { return true; }},
        {"one running, one waiting",
         [&] {
             return scripted.refreshWith({group(7, u"codex"_s, 30.0), waits},
                                         {std::nullopt, waitingLog(at(-5000))});
         }},
        {"failure", [&] { return scripted.failWith(u"ps: not found"_s); }},
    };
    for (const auto& [name, reach] : cases) {
        ASSERT_TRUE(reach()) << name;
        settle();
        const CodexRunState state = scripted.monitor.runState();
        EXPECT_EQ(popover.header()->stateColor(), namedColor(stateColor(state))) << name;
        EXPECT_EQ(popover.header()->badgeText(), badgeText(state)) << name;
        EXPECT_EQ(popover.header()->summaryText(), scripted.monitor.summary()) << name;
        EXPECT_EQ(popover.header()->waitingText(), waitingText(state)) << name;
        if (!waitingText(state).isEmpty())
            QTest::mouseClick(popover.header()->waitingLine(), Qt::LeftButton);
    }
    EXPECT_EQ(actions.wentTo, std::vector<qint64>{8}) << "the waiting line goes to the session";
    QTest::mouseClick(popover.openControlPanelButton(), Qt::LeftButton);
    EXPECT_EQ(actions.openControlPanelCalls, 1);
}

} // namespace
} // namespace brenvik
