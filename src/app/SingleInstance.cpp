#include "app/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace brenvik {

SingleInstance::SingleInstance(QObject* parent)
    : QObject(parent) {}

SingleInstance::~SingleInstance() = default;

SingleInstance::Claim SingleInstance::claim(bool showRunning) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface())
        return Claim::noBus;
    // The object first, so the name never answers without its method.
    if (!bus.registerObject(objectPath.toString(), this, QDBusConnection::ExportScriptableSlots))
        return Claim::noBus;
    const auto reply = bus.interface()->registerService(
        serviceName.toString(), QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered)
        return Claim::first;
    bus.unregisterObject(objectPath.toString());
    if (!reply.isValid())
        return Claim::noBus;
    if (!showRunning)
        return Claim::alreadyRunning;

    const QDBusMessage call =
        QDBusMessage::createMethodCall(serviceName.toString(), objectPath.toString(),
                                       serviceName.toString(), QStringLiteral("ShowControlPanel"));
    const QDBusMessage answer = bus.call(call, QDBus::Block, 5000);
    // A holder that does not answer is stuck; better a second tray icon than none.
    return answer.type() == QDBusMessage::ReplyMessage ? Claim::alreadyRunning : Claim::noBus;
}

void SingleInstance::ShowControlPanel() {
    Q_EMIT showControlPanelRequested();
}

} // namespace brenvik
