#pragma once

#include <QObject>
#include <QString>

#include <optional>

namespace brenvik {

// "Show in Dock while running": stored under "showDockIcon" and applied by
// keeping Brenvik's windows out of the taskbar and pager when off.
class AppVisibilityController : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool showDockIcon READ showDockIcon WRITE setShowDockIcon NOTIFY showDockIconChanged)
    Q_PROPERTY(std::optional<QString> lastError READ lastError NOTIFY lastErrorChanged)

public:
    // Reads the stored preference (true when absent or unreadable); applies nothing.
    explicit AppVisibilityController(QObject* parent = nullptr);

    [[nodiscard]] bool showDockIcon() const noexcept { return m_showDockIcon; }
    // Publishes, stores and applies (activate and report failure), every time.
    void setShowDockIcon(bool show);
    [[nodiscard]] const std::optional<QString>& lastError() const noexcept { return m_lastError; }

    void applyActivationPolicy(bool activate, bool reportFailure);

Q_SIGNALS:
    void objectWillChange();
    void showDockIconChanged(bool showDockIcon);
    void lastErrorChanged(const std::optional<QString>& lastError);

private:
    bool m_showDockIcon = true;
    std::optional<QString> m_lastError;
};

} // namespace brenvik
