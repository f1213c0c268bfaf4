#include "preferences/AppVisibilityController.h"

#include "monitor/Published.h"

namespace brenvik {

AppVisibilityController::AppVisibilityController(StoredPreferences& preferences, QObject* parent)
    : PreferenceController(parent)
    , m_ownPolicy(std::make_unique<TaskbarActivationPolicy>())
    , m_policy(m_ownPolicy.get())
    , m_preferences(preferences)
    , m_showDockIcon(preferences.isOn(StoredPreferences::kShowDockIcon)) {}

AppVisibilityController::AppVisibilityController(ActivationPolicy& policy,
                                                 StoredPreferences& preferences, QObject* parent)
    : PreferenceController(parent)
    , m_policy(&policy)
    , m_preferences(preferences)
    , m_showDockIcon(preferences.isOn(StoredPreferences::kShowDockIcon)) {}

AppVisibilityController::~AppVisibilityController() = default;

void AppVisibilityController::setShowDockIcon(bool show) {
    publish(this, m_showDockIcon, show, &AppVisibilityController::showDockIconChanged);
    const std::optional<QString> storeError =
        m_preferences.store(StoredPreferences::kShowDockIcon, m_showDockIcon);
    applyActivationPolicy(true, true);
    // The choice still holds for this session; say that it will not survive.
    if (storeError && !lastError())
        setLastError(storeError);
}

void AppVisibilityController::applyActivationPolicy(bool activate, bool reportFailure) {
    const ActivationPolicyKind wanted =
        m_showDockIcon ? ActivationPolicyKind::regular : ActivationPolicyKind::accessory;
    if (m_policy->setPolicy(wanted)) {
        setLastError(std::nullopt);
        if (m_showDockIcon && activate)
            m_policy->activate();
    } else if (reportFailure) {
        setLastError(
            tr((m_policy->desktopCanHide() ? kRefusalMessage : kCannotHideMessage).data()));
    }
}

} // namespace brenvik
