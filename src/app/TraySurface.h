#pragma once

#include "views/StatusPresentation.h"

#include <QIcon>
#include <QObject>
#include <QRect>
#include <QString>

namespace brenvik {

// Where the status item's drawing goes: the system tray in the app, a
// recorder in tests.
class TraySurface : public QObject {
    Q_OBJECT
    // Whether a tray exists to show the icon in; the control panel says so
    // while none does.
    Q_PROPERTY(bool hostAvailable READ hostAvailable NOTIFY hostAvailableChanged)

public:
    using QObject::QObject;

    [[nodiscard]] bool hostAvailable() const noexcept { return m_hostAvailable; }

    virtual void setIcon(const QIcon& icon) = 0;
    virtual void setToolTip(const QString& text) = 0;
    // The sessions its menu offers to go to, above the fixed items.
    virtual void setSessionItems(const QList<SessionMenuItem>& items) = 0;
    // The icon's place on screen, in global coordinates; empty where the host
    // does not say (StatusNotifierItem hosts never do).
    [[nodiscard]] virtual QRect geometry() const = 0;

Q_SIGNALS:
    // A left click (or the host's "activate") on the icon.
    void triggered();
    void hostAvailableChanged(bool hostAvailable);

protected:
    void setHostAvailable(bool available) {
        if (m_hostAvailable == available)
            return;
        m_hostAvailable = available;
        Q_EMIT hostAvailableChanged(available);
    }

private:
    bool m_hostAvailable = true;
};

} // namespace brenvik
