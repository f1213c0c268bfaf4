#include "preferences/NotificationsController.h"

#include "monitor/Published.h"
#include "preferences/StoredSwitch.h"

namespace brenvik {

NotificationsController::NotificationsController(const QString& settingsFile, QObject* parent)
    : QObject(parent)
    , m_settings(settingsFile.isEmpty()
                     ? std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                   QStringLiteral("Brenvik"),
                                                   QStringLiteral("Brenvik"))
                     : std::make_unique<QSettings>(settingsFile, QSettings::IniFormat)) {
    m_enabled = storedSwitchIsOn(m_settings->value(kSettingsKey));
}

NotificationsController::~NotificationsController() = default;

void NotificationsController::setEnabled(bool enabled) {
    publish(this, m_enabled, enabled, &NotificationsController::enabledChanged);
    m_settings->setValue(kSettingsKey, m_enabled);
    m_settings->sync();
    std::optional<QString> error;
    if (m_settings->status() != QSettings::NoError) {
        error = tr("The preference could not be saved to %1. It applies until "
                   "Brenvik quits.")
                    .arg(m_settings->fileName());
    }
    publish(this, m_lastError, error, &NotificationsController::lastErrorChanged);
}

} // namespace brenvik
