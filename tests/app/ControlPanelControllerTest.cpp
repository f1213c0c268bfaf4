#include "app/ControlPanelController.h"

#include "app/ControlPanelPlacement.h"
#include "tests/app/ShellTestSupport.h"
#include "views/ControlPanelView.h"
#include "views/ProcessListSectionView.h"
#include "views/StatusViews.h"

#include <QApplication>
#include <QDir>
#include <QScreen>
#include <QTranslator>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace brenvik {
namespace {
using namespace Qt::StringLiterals;

// A controller on a scripted monitor, with a temporary program: launch at
// login is not available, and the panel says why.
struct Panel {
    test::ScriptedMonitor scripted;
    test::PrivatePreferences preferences{/*temporaryProgram=*/true};
    test::RecordingActions actions;
    ControlPanelController controller{scripted.monitor, preferences.launchAtLogin,
                                      preferences.appVisibility, actions,
                                      &preferences.notifications};
};

TEST(ControlPanelController, BuildsOneFixedSizeWindowCentredOnce) {
    Panel panel;
    ControlPanelController& controller = panel.controller;
    EXPECT_EQ(controller.window(), nullptr) << "no window before the first show";
    controller.show();
    QWidget* window = controller.window();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Brenvik"));
    EXPECT_EQ(window->minimumSize(), window->maximumSize()) << "resizable";
    const QSize size = window->size();
    const QPoint centre = QGuiApplication::primaryScreen()->availableGeometry().center();
    const QRect frame(window->pos(), window->size().grownBy(controlPanelFrameEstimate));
    EXPECT_LE((frame.center() - centre).manhattanLength(), 4) << "frame centred";

    // Closing hides; later shows bring back the same window where it was left.
    const std::tuple<const char*, bool, std::optional<QPoint>> steps[] = {
        {"shown again while open", false, std::nullopt},
        {"closed, then shown", true, std::nullopt},
        {"moved, closed, then shown", true, QPoint(40, 60)},
    };
    for (const auto& [name, closeFirst, moveTo] : steps) {
        if (moveTo)
            window->move(*moveTo);
        const QPoint before = window->pos();
        if (closeFirst) {
            EXPECT_TRUE(window->close()) << name;
        }
        controller.show();
        EXPECT_EQ(controller.window(), window) << name;
        EXPECT_TRUE(window->isVisible()) << name;
        EXPECT_EQ(window->pos(), before) << name;
        EXPECT_EQ(window->size(), size) << name;
    }
    window->showMinimized();
    controller.show();
    EXPECT_FALSE(window->isMinimized()) << "restored, not only raised";
    EXPECT_EQ(QApplication::topLevelWidgets().count(window), 1);
    window->close();
}

// Debian's default font, DejaVu Sans 9 pt (which make test installs), with
// what takes room at start-up: the panel opens before the first refresh ends,
// which then brings three rows and a waiting session; launch at login says why
// it is not available; a third preference; and the line for a missing tray.
// Also at 16 pt, in every translation at 16 pt, and in DejaVu Sans Mono, where that line needs more
// than 420 px. While the window
// could still grow, nothing scrolls and nothing is cut; on a screen too small for it (the same test
// runs at scale 2 on a 500 px high screen), the content scrolls instead.
TEST(ControlPanelController, ShowsItsWholeContentWithinTheScreen) {
    const QFont before = QApplication::font();
    const QByteArray desktopBefore = qgetenv("XDG_CURRENT_DESKTOP");
    qputenv("XDG_CURRENT_DESKTOP", "GNOME"); // the longest missing-tray line
    std::vector<std::tuple<std::string, QString, qreal, bool, QString>> cases = {
        {"9 pt", u"DejaVu Sans"_s, 9, true, {}},
        {"9 pt, no tray", u"DejaVu Sans"_s, 9, false, {}},
        {"monospace, no tray", u"DejaVu Sans Mono"_s, 9, false, {}},
        {"16 pt", u"DejaVu Sans"_s, 16, true, {}},
    };
    for (const QString& translation : QDir(u":/i18n"_s).entryList({u"brenvik_*.qm"_s}))
        cases.emplace_back("16 pt, no tray, " + translation.toStdString(), u"DejaVu Sans"_s, 16,
                           false, translation);
    ASSERT_GT(cases.size(), 4U) << "no translation embedded";
    for (const auto& [name, family, points, tray, translationFile] : cases) {
        QFont font(family);
        font.setPointSizeF(points);
        QApplication::setFont(font);
        QTranslator translation;
        if (!translationFile.isEmpty()) {
            ASSERT_TRUE(translation.load(translationFile, u":/i18n"_s)) << name;
            QCoreApplication::installTranslator(&translation);
        }
        Panel panel;
        panel.controller.setTrayHostAvailable(tray);
        panel.controller.show();
        QList<DetectedProcessSample> groups;
        for (int i = 1; i <= 3; ++i) {
            groups.append(test::group(1000 + i, u"codex"_s));
            groups.last().cwd = QDir::homePath() + u"/projects/p%1"_s.arg(i);
        }
        ASSERT_TRUE(panel.scripted.refreshWith(
            groups, {std::nullopt, test::waitingLog(test::at(-120'000)), std::nullopt}));
        test::settle();

        QWidget* window = panel.controller.window();
        const auto* view = window->findChild<ControlPanelView*>();
        ASSERT_FALSE(view->header()->waitingText().isEmpty()) << name;
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        const QRect outer(window->pos(), window->size().grownBy(controlPanelFrameEstimate));
        EXPECT_TRUE(area.contains(outer)) << name << ": off the screen";
        if (outer.height() < area.height()) {
            EXPECT_FALSE(test::panelScrolls(*window)) << name << ": scrolls";
            const QStringList cut = test::cutTexts(*window);
            EXPECT_TRUE(cut.isEmpty()) << name << ": " << cut.join(u" | "_s).toStdString();
            EXPECT_EQ(view->processList()->form(), ProcessListForm::plainStack)
                << name << ": the rows scroll";
            EXPECT_EQ(view->missingTrayLine()->text().toStdString(),
                      view->missingTrayLine()->fullText().toStdString())
                << name << ": the line cut short";
            EXPECT_GE(window->width(), 420) << name;
            EXPECT_GE(window->height(), 480) << name;
        } else {
            EXPECT_GE(view->height(), view->minimumHeight()) << name << ": cut, not scrolled";
        }
        for (const QWidget* button : {static_cast<const QWidget*>(view->refreshButton()),
                                      static_cast<const QWidget*>(view->quitButton())})
            EXPECT_GE(button->width(), button->sizeHint().width()) << name << ": a button cut";
        EXPECT_GE(view->lastUpdatedLabel()->width(),
                  view->lastUpdatedLabel()->minimumSizeHint().width())
            << name;
        window->close();
    }
    QApplication::setFont(before);
    qputenv("XDG_CURRENT_DESKTOP", desktopBefore);
}

TEST(ControlPanelPlacement, NaturalSizeWhereItFitsAndTheFrameAlwaysOnScreen) {
    const QMargins frame = controlPanelFrameEstimate;
    const std::tuple<const char*, QSize, QRect, QSize> cases[] = {
        {"fits", QSize(420, 480), QRect(0, 0, 1280, 800), QSize(420, 480)},
        {"below a top panel", QSize(420, 480), QRect(0, 32, 1024, 668), QSize(420, 480)},
        {"16 pt at scale 2, 500 px high", QSize(420, 518), QRect(0, 0, 1000, 500), QSize(420, 448)},
        {"second screen", QSize(420, 480), QRect(1280, 0, 1920, 1080), QSize(420, 480)},
    };
    for (const auto& [name, natural, area, size] : cases) {
        const QRect content = controlPanelGeometry(natural, frame, area);
        EXPECT_EQ(content.size(), size) << name;
        const QRect outer = content.marginsAdded(frame);
        EXPECT_TRUE(area.contains(outer)) << name;
        EXPECT_LE((outer.center() - area.center()).manhattanLength(), 1) << name;
    }
    EXPECT_EQ(controlPanelGeometry(QSize(420, 480), frame, QRect(0, 0, 10, 10)).topLeft(),
              QPoint(frame.left(), frame.top()))
        << "smaller than its frame: top-left wins";

    // Resized where it stands, moved only as far as keeps the frame on the screen.
    const QRect area(0, 0, 1280, 800);
    const std::tuple<const char*, QRect, QSize, QRect> resized[] = {
        {"grows in place", QRect(100, 100, 420, 480), QSize(420, 500), QRect(100, 100, 420, 500)},
        {"grows up from the bottom", QRect(100, 300, 420, 480), QSize(420, 520),
         QRect(100, 800 - frame.bottom() - 520, 420, 520)},
        {"taller than the screen", QRect(100, 100, 420, 480), QSize(420, 900),
         QRect(100, frame.top(), 420, 800 - frame.top() - frame.bottom())},
    };
    for (const auto& [name, content, size, expected] : resized)
        EXPECT_EQ(resizedControlPanelGeometry(content, size, frame, area), expected) << name;
}

} // namespace
} // namespace brenvik
