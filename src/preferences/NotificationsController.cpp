#include "preferences/NotificationsController.h"

#include "monitor/Published.h"

namespace brenvik {

NotificationsController::NotificationsController(StoredPreferences& preferences, QObject* parent)
    : PreferenceController(parent)
    , m_preferences(preferences)
    , m_enabled(preferences.isOn(StoredPreferences::kNotifySessions)) {}

void NotificationsController::setEnabled(bool enabled) {
    publish(this, m_enabled, enabled, &NotificationsController::enabledChanged);
    setLastError(m_preferences.store(StoredPreferences::kNotifySessions, m_enabled));
}

} // namespace brenvik
