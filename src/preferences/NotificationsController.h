#pragma once

#include "preferences/StoredPreferences.h"

#include <QObject>
#include <QString>
#include <optional>

namespace brenvik {

// "Notify when a session finishes or needs you": stored beside the taskbar
// preference, on unless turned off.
class NotificationsController : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
    Q_PROPERTY(std::optional<QString> lastError READ lastError NOTIFY lastErrorChanged)

public:
    // The preferences must outlive it.
    explicit NotificationsController(StoredPreferences& preferences, QObject* parent = nullptr);

    [[nodiscard]] bool enabled() const noexcept { return m_enabled; }
    // Publishes and stores; a store that fails keeps the choice for this
    // session and says so.
    void setEnabled(bool enabled);
    [[nodiscard]] const std::optional<QString>& lastError() const noexcept { return m_lastError; }

Q_SIGNALS:
    void objectWillChange();
    void enabledChanged(bool enabled);
    void lastErrorChanged(const std::optional<QString>& lastError);

private:
    StoredPreferences& m_preferences;
    bool m_enabled = true;
    std::optional<QString> m_lastError;
};

} // namespace brenvik
