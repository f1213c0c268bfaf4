// The tray program: one instance per session, no window of its own at start;
// the root model makes the tray icon and the control panel.
#include "app/AppModel.h"
#include "app/ControlPanelController.h"
#include "app/SingleInstance.h"
#include "app/TrayIconPainter.h"
#include "monitor/Translations.h"
#include "preferences/AutostartEntry.h"

#include <QApplication>
#include <QIcon>
#include <QLoggingCategory>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace {

constexpr int kExitNoDisplay = 1;
constexpr int kExitUsage = 2;

const char kUsage[] = QT_TRANSLATE_NOOP("BrenvikApp", R"(Usage: brenvik [--autostart] [--verbose]

Shows in the tray whether your Codex CLI sessions are running, waiting for
you, or idle, and opens its control panel. Started again while it runs, it
brings the running one's control panel to the front.

Options:
  --autostart  start in the tray without opening the control panel (the
               login entry that "Launch at login" writes uses it)
  --verbose    log on standard error what could not be read, and why
  -h, --help   show this help and exit
  --version    show the version and exit

For terminals and status bars: brenvik-status.
)");

void print(std::FILE* stream, const char* text) {
    std::fputs(text, stream);
    std::fflush(stream);
}

// Help and errors come before the application object (Qt aborts without a
// display to show one on): a core application of their own translates them.
void printTranslated(std::FILE* stream, const QString& prefix, const char* source,
                     const QString& argument = {}) {
    int argc = 1;
    char name[] = "brenvik";
    char* argv[] = {name, nullptr};
    QCoreApplication core(argc, argv);
    brenvik::installTranslations();
    QString text = QCoreApplication::translate("BrenvikApp", source);
    if (!argument.isNull())
        text = text.arg(argument);
    print(stream, (prefix + text).toLocal8Bit().constData());
}

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

// Qt aborts when it finds no display; say so in one line instead. A platform
// chosen by hand (such as offscreen) needs none.
bool hasGraphicalSession() {
    if (isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM"))
        return true;
    if (!isSet("DISPLAY"))
        return false;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool reachable = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return reachable;
}

} // namespace

int main(int argc, char** argv) {
    bool autostart = false;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == u"-h" || argument == u"--help") {
            printTranslated(stdout, {}, kUsage);
            return 0;
        }
        if (argument == u"--version") {
            print(stdout, "brenvik " BRENVIK_VERSION "\n");
            return 0;
        }
        if (argument == brenvik::kAutostartOption) {
            autostart = true;
            continue;
        }
        if (argument == u"--verbose") {
            QLoggingCategory::setFilterRules(QStringLiteral("brenvik.*.debug=true"));
            continue;
        }
        printTranslated(stderr, QStringLiteral("brenvik: "),
                        argument.startsWith(u'-')
                            ? QT_TRANSLATE_NOOP("BrenvikApp", "unknown option '%1'\n\n")
                            : QT_TRANSLATE_NOOP("BrenvikApp", "unexpected argument '%1'\n\n"),
                        argument);
        printTranslated(stderr, {}, kUsage);
        return kExitUsage;
    }
    if (!hasGraphicalSession()) {
        printTranslated(stderr, QStringLiteral("brenvik: "),
                        QT_TRANSLATE_NOOP("BrenvikApp",
                                          "no graphical session to show a tray icon in (no "
                                          "reachable DISPLAY or WAYLAND_DISPLAY); brenvik-status "
                                          "--watch works in a terminal\n"));
        return kExitNoDisplay;
    }

    QApplication app(argc, argv);
    brenvik::installTranslations();
    QApplication::setOrganizationName(QStringLiteral("Brenvik"));
    QApplication::setApplicationName(QStringLiteral("Brenvik"));
    QApplication::setApplicationVersion(QStringLiteral(BRENVIK_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("brenvik"));
    QApplication::setWindowIcon(QIcon::fromTheme(
        QStringLiteral("brenvik"), brenvik::makeTrayIcon(brenvik::StateColor::green, {})));
    // The tray icon stays when the control panel is closed.
    QApplication::setQuitOnLastWindowClosed(false);

    brenvik::SingleInstance instance;
    // Launching again while running shows the running instance's control
    // panel; a login start into a running session changes nothing.
    if (instance.claim(/*showRunning=*/!autostart) ==
        brenvik::SingleInstance::Claim::alreadyRunning)
        return 0;

    brenvik::AppModel& model = brenvik::AppModel::shared();
    QObject::connect(&instance, &brenvik::SingleInstance::showControlPanelRequested, &model,
                     [&model] { model.controlPanel().show(); });
    model.bootstrap(/*openControlPanel=*/!autostart);
    return QApplication::exec();
}
