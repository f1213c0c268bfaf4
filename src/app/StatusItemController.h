#pragma once

#include "app/PopoverWindow.h"
#include "app/TraySurface.h"
#include "views/StatusPresentation.h"

#include <QMetaObject>
#include <QObject>
#include <QString>
#include <optional>

namespace brenvik {

class CodexProcessMonitor;
class ViewActions;

// The tray icon: the monitor's run state as a coloured dot with the count,
// the detail text as tool tip, and the popover a left click toggles.
class StatusItemController : public QObject {
    Q_OBJECT

public:
    // What the icon shows; pushed to the tray only when it differs.
    struct Appearance {
        StateColor color = StateColor::green;
        QString badge;
        QString toolTip;
        friend bool operator==(const Appearance&, const Appearance&) = default;
    };

    // Draws into the desktop's tray (once a tray host exists).
    explicit StatusItemController(ViewActions& actions, QObject* parent = nullptr);
    // Draws into `surface`, which must outlive the controller.
    StatusItemController(ViewActions& actions, TraySurface& surface, QObject* parent = nullptr);
    ~StatusItemController() override;

    // Makes the popover's content, follows the monitor's matches and
    // lastError, and draws the current state at once. A second call replaces
    // the earlier subscription.
    void configure(CodexProcessMonitor& monitor);

    // Opens the popover next to the icon, or closes it.
    void togglePopover();

    // Draws `state`; pushes to the tray only what changed.
    void updateButton(const CodexRunState& state);
    // Offers the sessions that wait or run in the menu, when they changed.
    void updateMenu(const QList<ProcessMatch>& matches);

    [[nodiscard]] const std::optional<Appearance>& appearance() const noexcept { return m_shown; }
    [[nodiscard]] TraySurface& surface() noexcept { return *m_surface; }
    [[nodiscard]] PopoverWindow& popover() noexcept { return m_popover; }

private:
    void redrawFromMonitor();

    ViewActions& m_actions;
    TraySurface* m_surface = nullptr;
    PopoverWindow m_popover;
    CodexProcessMonitor* m_monitor = nullptr;
    QList<QMetaObject::Connection> m_subscriptions;
    std::optional<Appearance> m_shown;
    std::optional<QList<SessionMenuItem>> m_menuItems;
};

} // namespace brenvik
