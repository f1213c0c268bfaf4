#pragma once

#include <QIcon>
#include <QObject>
#include <QRect>
#include <QString>

namespace brenvik {

// Where the status item's drawing goes: the system tray in the app, a
// recorder in tests.
class TraySurface : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    virtual void setIcon(const QIcon& icon) = 0;
    virtual void setToolTip(const QString& text) = 0;
    // The icon's place on screen, in global coordinates; empty where the host
    // does not say (StatusNotifierItem hosts never do).
    [[nodiscard]] virtual QRect geometry() const = 0;

Q_SIGNALS:
    // A left click (or the host's "activate") on the icon.
    void triggered();
};

} // namespace brenvik
