#pragma once

#include "app/TrayHostWatcher.h"
#include "app/TraySurface.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <memory>

namespace brenvik {

class ViewActions;

// The icon in the desktop's tray, with the right-click menu. The
// QSystemTrayIcon is made only once a tray host exists and there is an icon
// to show; until then the latest icon and tool tip are kept for it.
class SystemTraySurface : public TraySurface {
    Q_OBJECT

public:
    explicit SystemTraySurface(ViewActions& actions, QObject* parent = nullptr);
    ~SystemTraySurface() override;

    void setIcon(const QIcon& icon) override;
    void setToolTip(const QString& text) override;
    void setSessionItems(const QList<SessionMenuItem>& items) override;
    [[nodiscard]] QRect geometry() const override;

    // The context menu: one item per session that waits or runs, then
    // "Open Control Panel", "Refresh Now", "Quit".
    [[nodiscard]] QMenu& menu() noexcept { return m_menu; }

private:
    void createTrayIcon();

    ViewActions& m_actions;
    QMenu m_menu;
    QList<QAction*> m_sessionActions; // and their separator
    QIcon m_icon;
    QString m_toolTip;
    TrayHostWatcher m_hostWatcher;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon; // none until a host exists
};

} // namespace brenvik
