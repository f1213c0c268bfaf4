#pragma once

#include "preferences/ActivationPolicy.h"

#include <QObject>
#include <QSettings>
#include <QString>
#include <memory>
#include <optional>

namespace brenvik {

// "Show in taskbar while running": stored under "showDockIcon" and applied by
// keeping Brenvik's windows out of the taskbar and pager when off.
class AppVisibilityController : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool showDockIcon READ showDockIcon WRITE setShowDockIcon NOTIFY showDockIconChanged)
    Q_PROPERTY(std::optional<QString> lastError READ lastError NOTIFY lastErrorChanged)

public:
    // Reads the stored preference (true when absent or unreadable); applies nothing.
    // Uses the native settings of "Brenvik"/"Brenvik" and the taskbar policy.
    explicit AppVisibilityController(QObject* parent = nullptr);
    // For tests: another policy, and an INI file instead of the native settings
    // when settingsFile is not empty. The policy must outlive the controller.
    AppVisibilityController(ActivationPolicy& policy, const QString& settingsFile,
                            QObject* parent = nullptr);
    ~AppVisibilityController() override;

    static constexpr QStringView kSettingsKey = u"showDockIcon";
    // English; shown through tr().
    static constexpr QUtf8StringView kRefusalMessage =
        QT_TR_NOOP("The desktop rejected the taskbar visibility change right now. Try toggling "
                   "it again after the app is fully running.");
    // Where no retry can help (Wayland), trying again is no advice to give.
    static constexpr QUtf8StringView kCannotHideMessage = QT_TR_NOOP(
        "The desktop cannot keep windows out of the taskbar, so the control panel stays in it.");

    [[nodiscard]] bool showDockIcon() const noexcept { return m_showDockIcon; }
    // Publishes, stores and applies (activate and report failure), every time.
    void setShowDockIcon(bool show);
    [[nodiscard]] const std::optional<QString>& lastError() const noexcept { return m_lastError; }

    void applyActivationPolicy(bool activate, bool reportFailure);
    // False where no retry can keep the panel out of the taskbar (Wayland).
    [[nodiscard]] bool desktopCanHide() const { return m_policy->desktopCanHide(); }

Q_SIGNALS:
    void objectWillChange();
    void showDockIconChanged(bool showDockIcon);
    void lastErrorChanged(const std::optional<QString>& lastError);

private:
    void storePreference();

    std::unique_ptr<TaskbarActivationPolicy> m_ownPolicy;
    ActivationPolicy* m_policy = nullptr;
    std::unique_ptr<QSettings> m_settings;
    bool m_storeFailed = false;
    bool m_showDockIcon = true;
    std::optional<QString> m_lastError;
};

} // namespace brenvik
