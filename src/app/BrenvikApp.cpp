// The tray program: one instance per session, no window of its own at start;
// the root model makes the tray icon and the control panel.
#include "app/AppModel.h"
#include "app/ControlPanelController.h"
#include "app/SingleInstance.h"
#include "app/TrayIconPainter.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Brenvik"));
    QApplication::setApplicationName(QStringLiteral("Brenvik"));
    QApplication::setApplicationVersion(QStringLiteral(BRENVIK_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("brenvik"));
    QApplication::setWindowIcon(QIcon::fromTheme(
        QStringLiteral("brenvik"), brenvik::makeTrayIcon(brenvik::StateColor::green, {})));
    // The tray icon stays when the control panel is closed.
    QApplication::setQuitOnLastWindowClosed(false);

    brenvik::SingleInstance instance;
    // Launching again while running shows the running instance's control panel.
    if (instance.claim() == brenvik::SingleInstance::Claim::alreadyRunning)
        return 0;

    brenvik::AppModel& model = brenvik::AppModel::shared();
    QObject::connect(&instance, &brenvik::SingleInstance::showControlPanelRequested, &model,
                     [&model] { model.controlPanel().show(); });
    model.bootstrap();
    return QApplication::exec();
}
