// Renders the popover and the control panel in their states to PNG files, on
// the offscreen platform, for looking at them without a desktop.
//   brenvik_screenshots <output folder>

#include "ViewTestSupport.h"
#include "views/ControlPanelView.h"
#include "views/MenuPopoverView.h"

#include <QApplication>
#include <QDir>
#include <QFontDatabase>
#include <QStyleFactory>
#include <cstdio>
#include <functional>

using namespace brenvik;
using namespace brenvik::test;

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

const QList<DetectedProcessSample> kTwoGroups = {
    group(4242,
          QStringLiteral("node /usr/local/lib/node_modules/@openai/codex/bin/codex.js "
                         "--model gpt-5-codex"),
          14.5),
    group(51873, QStringLiteral("codex exec \"summarise the changes since the last release and "
                                "draft release notes for the team\"")),
};

const QList<DetectedProcessSample> kFiveGroups = {
    group(1207, QStringLiteral("codex"), 3.2),
    group(4242, QStringLiteral("node /usr/local/lib/node_modules/@openai/codex/bin/codex.js"),
          22.0),
    group(8810, QStringLiteral("npm exec @zed-industries/codex-acp")),
    group(23001, QStringLiteral("codex resume --last")),
    group(51873, QStringLiteral("openclaw acpx codex --cwd /home/ann/projects/brenvik")),
};

struct Scene {
    QString name;
    bool panel; // else the popover
    std::function<bool(ScriptedMonitor&, PrivatePreferences&)> prepare;
};

bool render(const Scene& scene, const QDir& out, const QString& suffix) {
    ScriptedMonitor scripted;
    PrivatePreferences preferences;
    RecordingActions actions;
    if (!scene.prepare(scripted, preferences)) {
        std::fprintf(stderr, "%s: the monitor did not reach its state\n", qPrintable(scene.name));
        return false;
    }
    std::unique_ptr<QWidget> view;
    if (scene.panel)
        view = std::make_unique<ControlPanelView>(scripted.monitor, preferences.launchAtLogin,
                                                  preferences.appVisibility, actions);
    else
        view = std::make_unique<MenuPopoverView>(scripted.monitor, actions);
    view->show();
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    const QString file = out.filePath(scene.name + suffix + QStringLiteral(".png"));
    if (!view->grab().save(file)) {
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

    const auto checking = [](ScriptedMonitor&, PrivatePreferences&) { return true; };
    const auto error = [](ScriptedMonitor& m, PrivatePreferences&) {
        return m.failWith(QStringLiteral("Could not read the process table: /proc is not "
                                         "mounted (No such file or directory)"));
    };
    const auto noMatch = [](ScriptedMonitor& m, PrivatePreferences&) { return m.refreshWith({}); };
    const auto two = [](ScriptedMonitor& m, PrivatePreferences& p) {
        p.launchAtLogin.setEnabled(true);
        return m.refreshWith(kTwoGroups);
    };
    const auto five = [](ScriptedMonitor& m, PrivatePreferences& p) {
        p.policy.accept = false;
        p.appVisibility.setShowDockIcon(false);
        return m.refreshWith(kFiveGroups);
    };
    const auto idle = [](ScriptedMonitor& m, PrivatePreferences&) {
        return m.refreshWith(
            {group(4242, QStringLiteral("codex")), group(51873, QStringLiteral("codex exec"))});
    };
    const auto approval = [](ScriptedMonitor& m, PrivatePreferences& p) {
        p.launchAtLogin.setStatus(LaunchAtLoginStatus::requiresApproval);
        return m.refreshWith({group(4242, QStringLiteral("codex"))});
    };

    const QList<Scene> light = {
        {QStringLiteral("control-panel-checking"), true, checking},
        {QStringLiteral("control-panel-error"), true, error},
        {QStringLiteral("control-panel-no-match"), true, noMatch},
        {QStringLiteral("control-panel-two-matches"), true, two},
        {QStringLiteral("control-panel-five-matches"), true, five},
        {QStringLiteral("control-panel-waiting-for-approval"), true, approval},
        {QStringLiteral("popover-checking"), false, checking},
        {QStringLiteral("popover-nothing-found"), false, noMatch},
        {QStringLiteral("popover-idle"), false, idle},
        {QStringLiteral("popover-running"), false, two},
        {QStringLiteral("popover-error"), false, error},
    };
    const QList<Scene> dark = {
        {QStringLiteral("control-panel-two-matches"), true, two},
        {QStringLiteral("control-panel-five-matches"), true, five},
        {QStringLiteral("control-panel-error"), true, error},
        {QStringLiteral("popover-running"), false, two},
        {QStringLiteral("popover-error"), false, error},
    };

    bool ok = true;
    for (const Scene& scene : light)
        ok = render(scene, out, QString()) && ok;
    QApplication::setPalette(darkPalette());
    for (const Scene& scene : dark)
        ok = render(scene, out, QStringLiteral("-dark")) && ok;
    return ok ? 0 : 1;
}
