// Renders the popover and the control panel in their states, and the tray
// icons on light and dark panels, to PNG files, on the offscreen platform, for
// looking at them without a desktop.
//   brenvik_screenshots <output folder>

#include "app/TrayIconPainter.h"
#include "monitor/Translations.h"
#include "places/SessionPlaceTracker.h"
#include "preferences/NotificationsController.h"
#include "views/ControlPanelView.h"
#include "views/MenuPopoverView.h"
#include "views/ProcessListSectionView.h"
#include "views/ProcessRowView.h"
#include "views/ProcessRowsView.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>
#include <cstdio>
#include <variant>

using namespace brenvik;

namespace {

QPalette darkPalette() {
    QPalette p;
    const QColor window(38, 38, 40), text(236, 236, 238), base(28, 28, 30), button(62, 62, 66);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, window);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, button);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, Qt::white);
    p.setColor(QPalette::Highlight, QColor(10, 132, 255));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::PlaceholderText, QColor(236, 236, 238, 140));
    p.setColor(QPalette::ToolTipBase, button);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::Light, button.lighter(130));
    p.setColor(QPalette::Midlight, button.lighter(115));
    p.setColor(QPalette::Mid, button.darker(120));
    p.setColor(QPalette::Dark, button.darker(160));
    p.setColor(QPalette::Shadow, Qt::black);
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(236, 236, 238, 90));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(236, 236, 238, 90));
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(236, 236, 238, 90));
    return p;
}

DetectedProcessSample group(qint64 pid, QString command, QString cwd, double cpuPercent = 0) {
    DetectedProcessSample sample;
    sample.pid = pid;
    sample.command = std::move(command);
    sample.totalCPUPercent = cpuPercent;
    sample.cumulativeCPUTime = 1.0;
    sample.memberCount = 2;
    sample.processCount = 2;
    sample.cwd = std::move(cwd);
    return sample;
}

// What the monitor has seen: nothing yet, a failure text, or these matches.
using Outcome = std::variant<std::monostate, QString, QList<DetectedProcessSample>>;
using Logs = QList<CodexProcessMonitor::LogState>;

// The time every picture is taken at.
const QDateTime kNow(QDate(2026, 11, 23), QTime(14, 5, 30));

// A session log in `phase` since that many seconds before the picture.
CodexProcessMonitor::LogState logged(TurnPhase phase, qint64 secondsAgo) {
    SessionLogState log;
    log.phase = phase;
    log.phaseSince = kNow.addSecs(-secondsAgo);
    return log;
}

// The buttons do nothing in a picture.
class NoActions : public ViewActions {
public:
    void openControlPanel() override {}
    void refreshNow() override {}
    void quit() override {}
    void goToSession(qint64) override {}
};

// Where the pictured sessions run, by PID: two tmux panes in xterms, an
// editor's session in Zed.
PlaceLookup placeOf(const SessionQuery& query) {
    const auto pane = [](QString session, int window, int pane) {
        return TmuxPane{QStringLiteral("/tmp/tmux-1000/default"),
                        std::move(session),
                        {},
                        window,
                        {},
                        {},
                        pane,
                        {}};
    };
    SessionPlace place;
    switch (query.pid) {
    case 4242:
        place = {QStringLiteral("xterm"), 0x1200007, pane(QStringLiteral("work"), 1, 0), false};
        break;
    case 51873:
        place = {QStringLiteral("xterm"), 0x1400007, pane(QStringLiteral("work"), 2, 1), false};
        break;
    case 8810:
        place = {QStringLiteral("Zed"), 0x1600003, std::nullopt, false};
        break;
    case 1207:
        place = {QStringLiteral("Konsole"), 0x1800005, pane(QStringLiteral("parser"), 0, 0), false};
        break;
    default:
        return {std::nullopt, QStringLiteral("not in a terminal")};
    }
    return {place, {}};
}

// A desktop that refuses the Dock switch, so the refusal shows.
class RefusingPolicy : public ActivationPolicy {
public:
    bool setPolicy(ActivationPolicyKind) override { return false; }
    void activate() override {}
};

// Both preference controllers on files in a private folder.
class Preferences {
public:
    Preferences()
        : launchAtLogin(entry())
        , appVisibility(m_policy, m_stored)
        , notifications(m_stored) {}

private:
    // A program file that exists, so the entry can be registered.
    AutostartEntry entry() const {
        const QString program = m_dir.filePath(QStringLiteral("brenvik"));
        QFile(program).open(QIODevice::WriteOnly);
        return AutostartEntry({m_dir.filePath(QStringLiteral("autostart")), program, {}});
    }

    QTemporaryDir m_dir;
    RefusingPolicy m_policy;
    StoredPreferences m_stored{m_dir.filePath(QStringLiteral("Brenvik.conf"))};

public:
    LaunchAtLoginController launchAtLogin;
    AppVisibilityController appVisibility;
    NotificationsController notifications;
};

struct Scene {
    const char* name;
    bool panel; // else the popover
    Outcome outcome;
    void (*preferences)(Preferences&) = nullptr;
    Logs logs = {};    // one per session; the rest are judged by CPU
    int pointSize = 0; // else the application font's
    // The panel's second row selected, and what going to it said.
    std::optional<GoResult> went = std::nullopt;
};

bool render(const Scene& scene, const QDir& out, const QString& suffix) {
    const Outcome outcome = scene.outcome;
    const Logs logs = scene.logs;
    CodexProcessMonitor monitor(
        [outcome] {
            if (const auto* failure = std::get_if<QString>(&outcome))
                throw ProcessSnapshotError(kProcessMonitorErrorDomain, 1, *failure);
            return std::get<QList<DetectedProcessSample>>(outcome);
        },
        [] { return kNow; }, nullptr, [logs](const QList<DetectedProcessSample>&) { return logs; });
    SessionPlaceTracker places(monitor, placeOf, [](const SessionQuery&, const auto&) {
        return GoResult{GoResult::Outcome::went, {}};
    });
    if (!std::holds_alternative<std::monostate>(outcome)) {
        QSignalSpy ended(&monitor, &CodexProcessMonitor::lastUpdatedChanged);
        monitor.refresh();
        if (ended.isEmpty() && !ended.wait(20'000)) {
            std::fprintf(stderr, "%s: the refresh did not end\n", scene.name);
            return false;
        }
        // Looked up after the monitor published its matches.
        QCoreApplication::processEvents();
        if (!QTest::qWaitFor([&] { return places.isIdle(); }, 20'000)) {
            std::fprintf(stderr, "%s: the places were not looked up\n", scene.name);
            return false;
        }
    }
    Preferences preferences;
    if (scene.preferences)
        scene.preferences(preferences);
    NoActions actions;
    const QFont font = QApplication::font();
    if (scene.pointSize) {
        QFont larger = font;
        larger.setPointSize(scene.pointSize);
        QApplication::setFont(larger);
    }
    const auto restoreFont = qScopeGuard([font] { QApplication::setFont(font); });
    std::unique_ptr<QWidget> view;
    if (scene.panel)
        view = std::make_unique<ControlPanelView>(monitor, preferences.launchAtLogin,
                                                  preferences.appVisibility, actions, nullptr,
                                                  &preferences.notifications, &places);
    else
        view = std::make_unique<MenuPopoverView>(monitor, actions);
    view->show();
    QCoreApplication::processEvents();
    if (auto* panel = dynamic_cast<ControlPanelView*>(view.get()); panel && scene.went) {
        panel->activateWindow();
        (void)QTest::qWaitForWindowActive(panel); // drawn as it is either way
        panel->processList()->rowsView()->rows().value(1)->setFocus();
        panel->showGoResult(*scene.went);
    }
    QCoreApplication::processEvents();
    // As the app's window does: it grows with what the panel shows.
    if (auto* panel = dynamic_cast<ControlPanelView*>(view.get())) {
        panel->resize(panel->wantedSize(panel->naturalSize()));
        QCoreApplication::processEvents();
    }
    const QString file =
        out.filePath(QString::fromUtf8(scene.name) + suffix + QStringLiteral(".png"));
    if (!view->grab().save(file)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
        return false;
    }
    std::printf("%s\n", qPrintable(file));
    return true;
}

// The tray icons in every state, at panel size and at 64 pixels, on a light
// and a dark panel side by side.
bool renderTrayIcons(const QDir& out) {
    struct Icon {
        StateColor color;
        const char* badge;
    };
    const Icon icons[] = {{StateColor::green, ""},     {StateColor::green, "2"},
                          {StateColor::yellow, "3"},   {StateColor::violet, "3"},
                          {StateColor::yellow, "99+"}, {StateColor::red, "!"}};
    constexpr int kCell = 76, kPadding = 16, kSmall = 22, kLarge = 64;
    const int panelWidth = kPadding * 2 + kCell * int(std::size(icons));
    const int height = kPadding * 3 + kSmall + kLarge;
    QImage image(panelWidth * 2, height, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    const QColor panels[] = {QColor(0xED, 0xED, 0xEF), QColor(0x2B, 0x2B, 0x2E)};
    for (int p = 0; p < 2; ++p) {
        const int left = p * panelWidth + kPadding;
        painter.fillRect(p * panelWidth, 0, panelWidth, height, panels[p]);
        for (int i = 0; i < int(std::size(icons)); ++i) {
            const QString badge = QString::fromLatin1(icons[i].badge);
            const int x = left + i * kCell;
            painter.drawImage(x + (kCell - kSmall) / 2, kPadding,
                              paintTrayIcon(icons[i].color, badge, kSmall));
            painter.drawImage(x + (kCell - kLarge) / 2, kPadding * 2 + kSmall,
                              paintTrayIcon(icons[i].color, badge, kLarge));
        }
    }
    painter.end();
    const QString file = out.filePath(QStringLiteral("tray-icons.png"));
    if (!image.save(file)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
        return false;
    }
    std::printf("%s\n", qPrintable(file));
    return true;
}

} // namespace

int main(int argc, char** argv) {
    // Twice the pixels, as on a HiDPI screen.
    if (qEnvironmentVariableIsEmpty("QT_SCALE_FACTOR"))
        qputenv("QT_SCALE_FACTOR", "2");
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <output folder>\n", argv[0]);
        return 2;
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(10);
    QApplication::setFont(font);

    const QDir out(QString::fromLocal8Bit(argv[1]));
    if (!QDir().mkpath(out.path()))
        return 1;

    const Outcome checking;
    const Outcome error = QStringLiteral(
        "Could not read the process table: /proc is not mounted (No such file or directory)");
    const Outcome noMatch = QList<DetectedProcessSample>();
    // Projects in the home folder, so that the rows show them "~"-abbreviated.
    const auto project = [](const char* name) -> QString {
        return QDir::homePath() + QStringLiteral("/projects/") + QString::fromLatin1(name);
    };
    const Outcome two = QList<DetectedProcessSample>{
        group(4242,
              QStringLiteral("node /usr/local/lib/node_modules/@openai/codex/bin/codex.js "
                             "--model gpt-5-codex"),
              project("brenvik"), 14.5),
        group(51873,
              QStringLiteral("codex exec \"summarise the changes since the last release "
                             "and draft release notes for the team\""),
              project("release-notes")),
    };
    const Outcome five = QList<DetectedProcessSample>{
        group(1207, QStringLiteral("codex"), project("parser"), 3.2),
        group(4242, QStringLiteral("node /usr/local/lib/node_modules/@openai/codex/bin/codex.js"),
              project("brenvik"), 22.0),
        group(8810, QStringLiteral("npm exec @zed-industries/codex-acp"), project("website")),
        group(23001, QStringLiteral("codex resume --last"), project("infra")),
        group(51873, QStringLiteral("node /usr/lib/node_modules/acpx/dist/cli.js codex exec"),
              project("docs")),
    };
    const Outcome three =
        QList<DetectedProcessSample>(std::get<QList<DetectedProcessSample>>(five).mid(0, 3));
    const Outcome idle = QList<DetectedProcessSample>{
        group(4242, QStringLiteral("codex"), project("brenvik")),
        group(51873, QStringLiteral("codex exec"), project("release-notes"))};
    const Outcome one =
        QList<DetectedProcessSample>{group(4242, QStringLiteral("codex"), project("brenvik"))};
    // One session of each kind, as their logs tell: running for 45 s, waiting
    // for an approval for 2 min, idle for 25 min.
    const Outcome threeStates = QList<DetectedProcessSample>{
        group(4242,
              QStringLiteral("node /usr/local/lib/node_modules/@openai/codex/bin/codex.js "
                             "--model gpt-5-codex"),
              project("brenvik"), 14.5),
        group(51873, QStringLiteral("codex \"migrate the build to presets\""),
              project("release-notes")),
        group(8810, QStringLiteral("npm exec @zed-industries/codex-acp"), project("website")),
    };
    const Logs threeStateLogs{logged(TurnPhase::running, 45),
                              logged(TurnPhase::awaitingToolOutput, 130),
                              logged(TurnPhase::idle, 25 * 60)};
    // The same sessions with their usage: models and context, and the plan's
    // limits at `fiveHours` and `week` percent (reset times from the real clock,
    // which the views read).
    const auto withLimits = [&](double fiveHours, double week) {
        Logs logs = threeStateLogs;
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const qint64 contexts[] = {61'000, 95'608, 231'000};
        for (qsizetype i = 0; i < logs.size(); ++i) {
            logs[i]->model = QStringLiteral("gpt-5-codex");
            logs[i]->tokens = TokenUsage{contexts[i] * 4, contexts[i], 258'400};
            logs[i]->codexHome = QDir::homePath() + QStringLiteral("/.codex");
        }
        logs[0]->rateLimits =
            RateLimits{RateLimitWindow{fiveHours, 300, now.addSecs(3 * 3600 + 600)},
                       RateLimitWindow{week, 10080, now.addDays(4)},
                       QStringLiteral("plus"),
                       {},
                       now.addSecs(-30)};
        return logs;
    };
    const Logs limits42 = withLimits(42, 13), limits96 = withLimits(96, 71);
    const auto loginOn = [](Preferences& p) { p.launchAtLogin.setEnabled(true); };
    const auto dockRefused = [](Preferences& p) { p.appVisibility.setShowDockIcon(false); };
    // Both failure texts crowd the list: its three rows scroll.
    const auto bothFail = [](Preferences& p) {
        QFile(QFileInfo(p.launchAtLogin.entry().filePath()).path()).open(QIODevice::WriteOnly);
        p.launchAtLogin.setEnabled(true);
        p.appVisibility.setShowDockIcon(false);
    };
    const auto approval = [](Preferences& p) {
        p.launchAtLogin.setStatus(LaunchAtLoginStatus::requiresApproval);
    };

    const Scene light[] = {
        {"control-panel-checking", true, checking},
        {"control-panel-error", true, error},
        {"control-panel-no-match", true, noMatch},
        {"control-panel-two-matches", true, two, loginOn},
        {"control-panel-five-matches", true, five, dockRefused},
        {"control-panel-waiting-for-approval", true, one, approval},
        {"control-panel-preference-failures", true, three, bothFail},
        {"control-panel-three-states", true, threeStates, loginOn, threeStateLogs},
        {"control-panel-16pt", true, threeStates, dockRefused, threeStateLogs, 16},
        {"control-panel-go-to", true, threeStates, loginOn, threeStateLogs, 0,
         GoResult{GoResult::Outcome::selected,
                  QStringLiteral("In xterm, tmux work:2.1: its pane is selected; the window was "
                                 "not raised: a Wayland desktop lets no program raise another's "
                                 "window")}},
        {"popover-checking", false, checking},
        {"popover-nothing-found", false, noMatch},
        {"popover-idle", false, idle},
        {"popover-running", false, two},
        {"popover-error", false, error},
        {"popover-waiting", false, threeStates, nullptr, threeStateLogs},
        {"popover-limits-42", false, threeStates, nullptr, limits42},
        {"popover-limits-96", false, threeStates, nullptr, limits96},
        {"control-panel-limits-42", true, threeStates, loginOn, limits42},
        {"control-panel-limits-96", true, threeStates, loginOn, limits96},
        {"control-panel-limits-16pt", true, threeStates, loginOn, limits96, 16},
    };
    const Scene dark[] = {
        {"control-panel-three-states", true, threeStates, loginOn, threeStateLogs},
        {"popover-waiting", false, threeStates, nullptr, threeStateLogs},
        {"control-panel-two-matches", true, two, loginOn},
        {"control-panel-five-matches", true, five, dockRefused},
        {"control-panel-error", true, error},
        {"popover-running", false, two},
        {"popover-error", false, error},
    };

    // The panel and the popover in each language Brenvik has besides English, at the
    // application's font and at 16 pt: the longest texts must fit as well.
    const Scene translated[] = {
        {"control-panel", true, threeStates, loginOn, limits42},
        {"control-panel-16pt", true, threeStates, dockRefused, limits96, 16},
        {"popover", false, threeStates, nullptr, limits42},
        {"popover-16pt", false, threeStates, nullptr, limits96, 16},
    };

    bool ok = renderTrayIcons(out);
    for (const Scene& scene : light)
        ok = render(scene, out, QString()) && ok;
    QApplication::setPalette(darkPalette());
    for (const Scene& scene : dark)
        ok = render(scene, out, QStringLiteral("-dark")) && ok;
    // Last: a translation stays installed.
    QApplication::setPalette(QApplication::style()->standardPalette());
    for (QString language :
         QDir(QStringLiteral(":/i18n")).entryList({QStringLiteral("brenvik_*.qm")})) {
        language = language.section(u'_', 1).section(u'.', 0, 0);
        const QLocale locale(language);
        ok = installTranslation(locale) && ok;
        QLocale::setDefault(locale);
        for (const Scene& scene : translated)
            ok = render(scene, out, u'-' + language) && ok;
    }
    return ok ? 0 : 1;
}
