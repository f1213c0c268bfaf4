#include "preferences/LaunchAtLoginController.h"

#include "monitor/Published.h"

namespace brenvik {

LaunchAtLoginController::LaunchAtLoginController(QObject* parent)
    : LaunchAtLoginController(AutostartEntry(), parent) {}

LaunchAtLoginController::LaunchAtLoginController(AutostartEntry entry, QObject* parent)
    : PreferenceController(parent)
    , m_entry(std::move(entry)) {
    setStatus(systemStatus());
}

void LaunchAtLoginController::setStatus(LaunchAtLoginStatus status) {
    publish(this, m_status, status, &LaunchAtLoginController::statusChanged);
}

LaunchAtLoginStatus LaunchAtLoginController::systemStatus() const {
    return m_entry.status();
}

void LaunchAtLoginController::setEnabled(bool enabled) {
    // No check of the current state first: the request goes to disk as asked.
    std::optional<QString> error = enabled ? m_entry.install() : m_entry.remove();
    setLastError(std::move(error));
    setStatus(systemStatus());
}

} // namespace brenvik
