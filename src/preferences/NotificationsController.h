#pragma once

#include "preferences/PreferenceController.h"
#include "preferences/StoredPreferences.h"

#include <QObject>
#include <QString>
#include <optional>

namespace brenvik {

// "Notify when a session finishes or needs you": stored beside the taskbar
// preference, on unless turned off. The stored preferences it is given must
// outlive it.
class NotificationsController : public PreferenceController {
    Q_OBJECT
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)

public:
    explicit NotificationsController(StoredPreferences& preferences, QObject* parent = nullptr);

    [[nodiscard]] bool enabled() const noexcept { return m_enabled; }
    // Publishes and stores; a store that fails keeps the choice for this
    // session and says so.
    void setEnabled(bool enabled);

Q_SIGNALS:
    void enabledChanged(bool enabled);

private:
    StoredPreferences& m_preferences;
    bool m_enabled = true;
};

} // namespace brenvik
