#include "views/ControlPanelView.h"

#include "ViewTestSupport.h"
#include "views/PreferencesControlsView.h"
#include "views/ProcessListSectionView.h"
#include "views/ProcessRowView.h"
#include "views/ProcessRowsView.h"
#include "views/StatusViews.h"
#include "views/ToggleSwitch.h"

#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;
using namespace brenvik::test;

// Lets queued updates run.
void settle() {
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

bool waitFor(const std::function<bool()>& condition) {
    for (int i = 0; i < 2000 && !condition(); ++i)
        QTest::qWait(10);
    return condition();
}

QList<DetectedProcessSample> groups(int count) {
    QList<DetectedProcessSample> list;
    for (int i = 1; i <= count; ++i)
        list.append(group(1000 + i, u"codex --session %1"_s.arg(i), i == 1 ? 12.0 : 0.0));
    return list;
}

class ControlPanel : public ::testing::Test {
protected:
    ControlPanelView& panel() {
        if (!m_panel) {
            m_panel =
                std::make_unique<ControlPanelView>(m_monitor.monitor, m_preferences.launchAtLogin,
                                                   m_preferences.appVisibility, m_actions);
            m_panel->show();
            settle();
        }
        return *m_panel;
    }

    ScriptedMonitor m_monitor;
    PrivatePreferences m_preferences;
    RecordingActions m_actions;
    std::unique_ptr<ControlPanelView> m_panel;
};

TEST_F(ControlPanel, HasTheWindowContentSize) {
    EXPECT_EQ(panel().size(), QSize(420, 480));
}

TEST_F(ControlPanel, PlaceholderAndErrorLineFollowTheMonitor) {
    const QString failure =
        u"Could not read the process table: a very long failure text that cannot fit on one "
        u"line of the control panel however wide the font"_s;
    struct Case {
        const char* name;
        std::function<bool(ScriptedMonitor&)> reach;
        QString placeholder;
        bool errorLine;
        QString footer;
    };
    const Case cases[] = {
        {"before the first refresh", [](ScriptedMonitor&) { return true; },
         u"Checking the local process list\u2026"_s, false, u"Checking now"_s},
        {"after a failure", [&](ScriptedMonitor& m) { return m.failWith(failure); },
         u"No process list available while detection is in an error state. "_s + failure, true,
         u"Updated "_s},
        {"no match", [](ScriptedMonitor& m) { return m.refreshWith({}); },
         u"No matching Codex CLI processes found."_s, false, u"Updated "_s},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(c.reach(m_monitor)) << c.name;
        settle();
        ControlPanelView& view = panel();
        EXPECT_EQ(view.processList()->form(), ProcessListForm::placeholder) << c.name;
        EXPECT_EQ(view.processList()->placeholderText(), c.placeholder) << c.name;
        EXPECT_TRUE(view.lastUpdatedLabel()->text().startsWith(c.footer)) << c.name;
        ElidingLabel* line = view.errorLine();
        EXPECT_EQ(line->isVisible(), c.errorLine) << c.name;
        if (c.errorLine) {
            EXPECT_EQ(line->fullText(), failure) << c.name;
            // One line: shortened to fit, never wrapped.
            EXPECT_FALSE(line->wordWrap()) << c.name;
            EXPECT_LE(line->fontMetrics().horizontalAdvance(line->text()), line->width()) << c.name;
            EXPECT_TRUE(line->text().endsWith(QChar(0x2026))) << c.name;
            EXPECT_EQ(view.header()->badgeText(), u"!"_s) << c.name;
        }
    }
}

TEST_F(ControlPanel, ThreeRowsStackAndAFourthScrolls) {
    struct Case {
        int count;
        ProcessListForm form;
        bool scrollBar;
    };
    const Case cases[] = {
        {1, ProcessListForm::plainStack, false},   {3, ProcessListForm::plainStack, false},
        {4, ProcessListForm::scrollingList, true}, {5, ProcessListForm::scrollingList, true},
        {2, ProcessListForm::plainStack, false},   {0, ProcessListForm::placeholder, false},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(m_monitor.refreshWith(groups(c.count))) << c.count;
        settle();
        ProcessListSectionView* list = panel().processList();
        EXPECT_EQ(list->form(), c.form) << c.count << " matches";
        EXPECT_EQ(list->rowsView()->rows().size(), c.count) << c.count << " matches";
        const bool barShown =
            list->scrollArea()->isVisible() && list->scrollArea()->verticalScrollBar()->isVisible();
        EXPECT_EQ(barShown, c.scrollBar) << c.count << " matches";
        const QList<ProcessRowView*> rows = list->rowsView()->rows();
        for (int i = 0; i < rows.size(); ++i) {
            EXPECT_TRUE(rows[i]->isVisible()) << c.count << " matches, row " << i;
            EXPECT_EQ(rows[i]->match().pid, 1001 + i) << c.count << " matches, row " << i;
        }
    }
}

TEST_F(ControlPanel, RowsShowPidStatusAndTheShortenedCommand) {
    const QString longCommand = u"  node "_s + QString(200, u'x') + u"\n"_s;
    ASSERT_TRUE(m_monitor.refreshWith({group(42, longCommand, 50.0), group(4711, u"codex"_s)}));
    settle();
    const QList<ProcessRowView*> rows = panel().processList()->rowsView()->rows();
    ASSERT_EQ(rows.size(), 2);
    const auto labels = [](QWidget* row) {
        QStringList texts;
        for (const QLabel* label : row->findChildren<QLabel*>())
            texts.append(label->text());
        return texts;
    };
    EXPECT_EQ(labels(rows[0]),
              (QStringList{u"PID 42"_s, u"Running"_s, u"node "_s + QString(102, u'x') + u"..."_s}));
    EXPECT_EQ(labels(rows[1]), (QStringList{u"PID 4711"_s, u"Idle"_s, u"codex"_s}));
    EXPECT_EQ(rows[0]->height(), 38);
    const QLabel* command = rows[0]->findChildren<QLabel*>().last();
    EXPECT_TRUE(command->textInteractionFlags() & Qt::TextSelectableByMouse);
}

TEST_F(ControlPanel, RKeyPressesRefreshNow) {
    ControlPanelView& view = panel();
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    QTest::keyClick(&view, Qt::Key_R, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_R, Qt::AltModifier);
    QTest::qWait(300);
    EXPECT_EQ(m_actions.refreshNowCalls, 0) << "only R alone is the shortcut";
    QTest::keyClick(&view, Qt::Key_R);
    EXPECT_TRUE(waitFor([&] { return m_actions.refreshNowCalls == 1; }));
    QTest::mouseClick(view.quitButton(), Qt::LeftButton);
    EXPECT_EQ(m_actions.quitCalls, 1);
    EXPECT_EQ(m_actions.refreshNowCalls, 1);
}

TEST_F(ControlPanel, RebuildsOnlyAfterAPublishAndOncePerTurn) {
    ControlPanelView& view = panel();
    settle();
    const int panelUpdates = view.updateCount();
    const int listUpdates = view.processList()->updateCount();
    const int preferenceUpdates = view.preferences()->updateCount();
    QTest::qWait(100);
    EXPECT_EQ(view.updateCount(), panelUpdates);
    EXPECT_EQ(view.processList()->updateCount(), listUpdates);
    EXPECT_EQ(view.preferences()->updateCount(), preferenceUpdates);

    // Several publishes in one turn: one update.
    m_preferences.launchAtLogin.setStatus(LaunchAtLoginStatus::enabled);
    m_preferences.launchAtLogin.setStatus(LaunchAtLoginStatus::requiresApproval);
    m_preferences.appVisibility.setShowDockIcon(false);
    settle();
    EXPECT_EQ(view.preferences()->updateCount(), preferenceUpdates + 1);
    EXPECT_EQ(view.updateCount(), panelUpdates) << "the monitor did not publish";

    // A refresh publishes at its start and at its end.
    ASSERT_TRUE(m_monitor.refreshWith(groups(2)));
    settle();
    EXPECT_GE(view.updateCount(), panelUpdates + 1);
    EXPECT_LE(view.updateCount(), panelUpdates + 2);
    EXPECT_EQ(view.processList()->updateCount() - listUpdates, view.updateCount() - panelUpdates);
}

} // namespace
} // namespace brenvik
