#include "preferences/AppVisibilityController.h"

#include "monitor/Published.h"
#include "preferences/StoredSwitch.h"

namespace brenvik {

AppVisibilityController::AppVisibilityController(QObject* parent)
    : QObject(parent)
    , m_ownPolicy(std::make_unique<TaskbarActivationPolicy>())
    , m_policy(m_ownPolicy.get())
    , m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                             QStringLiteral("Brenvik"),
                                             QStringLiteral("Brenvik"))) {
    m_showDockIcon = storedSwitchIsOn(m_settings->value(kSettingsKey));
}

AppVisibilityController::AppVisibilityController(ActivationPolicy& policy,
                                                 const QString& settingsFile, QObject* parent)
    : QObject(parent)
    , m_policy(&policy)
    , m_settings(settingsFile.isEmpty()
                     ? std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                   QStringLiteral("Brenvik"),
                                                   QStringLiteral("Brenvik"))
                     : std::make_unique<QSettings>(settingsFile, QSettings::IniFormat)) {
    m_showDockIcon = storedSwitchIsOn(m_settings->value(kSettingsKey));
}

AppVisibilityController::~AppVisibilityController() = default;

void AppVisibilityController::setShowDockIcon(bool show) {
    publish(this, m_showDockIcon, show, &AppVisibilityController::showDockIconChanged);
    storePreference();
    applyActivationPolicy(true, true);
    // The choice still holds for this session; say that it will not survive.
    if (m_storeFailed && !m_lastError) {
        publish(this, m_lastError,
                tr("The preference could not be saved to %1. It applies until "
                   "Brenvik quits.")
                    .arg(m_settings->fileName()),
                &AppVisibilityController::lastErrorChanged);
    }
}

void AppVisibilityController::storePreference() {
    m_settings->setValue(kSettingsKey, m_showDockIcon);
    m_settings->sync();
    m_storeFailed = m_settings->status() != QSettings::NoError;
}

void AppVisibilityController::applyActivationPolicy(bool activate, bool reportFailure) {
    const ActivationPolicyKind wanted =
        m_showDockIcon ? ActivationPolicyKind::regular : ActivationPolicyKind::accessory;
    if (m_policy->setPolicy(wanted)) {
        publish(this, m_lastError, std::nullopt, &AppVisibilityController::lastErrorChanged);
        if (m_showDockIcon && activate)
            m_policy->activate();
    } else if (reportFailure) {
        publish(this, m_lastError,
                tr((m_policy->desktopCanHide() ? kRefusalMessage : kCannotHideMessage).data()),
                &AppVisibilityController::lastErrorChanged);
    }
}

} // namespace brenvik
