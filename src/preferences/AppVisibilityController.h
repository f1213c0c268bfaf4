#pragma once

#include "preferences/ActivationPolicy.h"
#include "preferences/PreferenceController.h"
#include "preferences/StoredPreferences.h"

#include <QObject>
#include <QString>
#include <memory>
#include <optional>

namespace brenvik {

// "Show in taskbar while running": stored under "showDockIcon" and applied by
// keeping Brenvik's windows out of the taskbar and pager when off.
class AppVisibilityController : public PreferenceController {
    Q_OBJECT
    Q_PROPERTY(bool showDockIcon READ showDockIcon WRITE setShowDockIcon NOTIFY showDockIconChanged)

public:
    // English; shown through tr().
    static constexpr QUtf8StringView kRefusalMessage =
        QT_TR_NOOP("The desktop rejected the taskbar visibility change right now. Try toggling "
                   "it again after the app is fully running.");
    // Where no retry can help (Wayland), trying again is no advice to give.
    static constexpr QUtf8StringView kCannotHideMessage = QT_TR_NOOP(
        "The desktop cannot keep windows out of the taskbar, so the control panel stays in it.");

    // Reads the stored preference; applies nothing. With the taskbar policy,
    // or (tests) another one. The preferences and the policy must outlive it.
    explicit AppVisibilityController(StoredPreferences& preferences, QObject* parent = nullptr);
    AppVisibilityController(ActivationPolicy& policy, StoredPreferences& preferences,
                            QObject* parent = nullptr);
    ~AppVisibilityController() override;

    [[nodiscard]] bool showDockIcon() const noexcept { return m_showDockIcon; }
    // Publishes, stores and applies (activate and report failure), every time.
    void setShowDockIcon(bool show);

    void applyActivationPolicy(bool activate, bool reportFailure);
    // False where no retry can keep the panel out of the taskbar (Wayland).
    [[nodiscard]] bool desktopCanHide() const { return m_policy->desktopCanHide(); }

Q_SIGNALS:
    void showDockIconChanged(bool showDockIcon);

private:
    std::unique_ptr<TaskbarActivationPolicy> m_ownPolicy;
    ActivationPolicy* m_policy = nullptr;
    StoredPreferences& m_preferences;
    bool m_showDockIcon = true;
};

} // namespace brenvik
