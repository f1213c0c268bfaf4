#include "preferences/NotificationsController.h"

#include "monitor/Published.h"

namespace brenvik {

NotificationsController::NotificationsController(StoredPreferences& preferences, QObject* parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_enabled(preferences.isOn(StoredPreferences::kNotifySessions)) {}

void NotificationsController::setEnabled(bool enabled) {
    publish(this, m_enabled, enabled, &NotificationsController::enabledChanged);
    publish(this, m_lastError, m_preferences.store(StoredPreferences::kNotifySessions, m_enabled),
            &NotificationsController::lastErrorChanged);
}

} // namespace brenvik
