// A stand-in for a StatusNotifierItem panel, with only what Qt and Brenvik ask
// of one: owns org.kde.StatusNotifierWatcher on the session bus, says a host is
// there (with --host-after SECONDS only that long after it started, as a panel
// whose host comes up after the watcher does), and prints one line
// "registered SERVICE" for every item that registers, so the end-to-end test
// can talk to the item itself.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

class FakeWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)

public:
    [[nodiscard]] bool isHostRegistered() const { return m_hostRegistered; }
    void setHostRegistered(bool registered) { m_hostRegistered = registered; }
    void registerHost() {
        m_hostRegistered = true;
        Q_EMIT StatusNotifierHostRegistered();
    }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service, const QDBusMessage& message) {
        // Items may pass an object path instead of a name; then the sender is the name.
        const QString name = service.startsWith(u'/') ? message.service() : service;
        std::printf("registered %s\n", qPrintable(name));
        std::fflush(stdout);
        Q_EMIT StatusNotifierItemRegistered(name);
    }

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString& service);
    void StatusNotifierHostRegistered();

private:
    bool m_hostRegistered = true;
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QDBusConnection bus = QDBusConnection::sessionBus();
    FakeWatcher watcher;
    const QStringList arguments = QCoreApplication::arguments();
    if (const qsizetype at = arguments.indexOf(u"--host-after"_s);
        at > 0 && at + 1 < arguments.size()) {
        watcher.setHostRegistered(false);
        QTimer::singleShot(arguments[at + 1].toInt() * 1000, &watcher, &FakeWatcher::registerHost);
    }
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                            QDBusConnection::ExportAllContents) ||
        !bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"))) {
        std::fprintf(stderr, "cannot own org.kde.StatusNotifierWatcher on the session bus\n");
        return 1;
    }
    return QCoreApplication::exec();
}

#include "FakeStatusNotifierWatcher.moc"
