#pragma once

#include "preferences/AutostartEntry.h"
#include "preferences/LaunchAtLoginStatus.h"

#include <QObject>
#include <QString>
#include <optional>

namespace brenvik {

// Registers Brenvik to start at login through an XDG autostart entry, and
// publishes what the disk holds. Published properties follow publish().
class LaunchAtLoginController : public QObject {
    Q_OBJECT
    Q_PROPERTY(brenvik::LaunchAtLoginStatus status READ status WRITE setStatus NOTIFY statusChanged)
    Q_PROPERTY(std::optional<QString> lastError READ lastError NOTIFY lastErrorChanged)

public:
    // Reads the current status at once. The default entry is this program's
    // in $XDG_CONFIG_HOME/autostart; tests pass their own.
    explicit LaunchAtLoginController(QObject* parent = nullptr);
    explicit LaunchAtLoginController(AutostartEntry entry, QObject* parent = nullptr);

    [[nodiscard]] LaunchAtLoginStatus status() const noexcept { return m_status; }
    void setStatus(LaunchAtLoginStatus status);
    [[nodiscard]] const std::optional<QString>& lastError() const noexcept { return m_lastError; }

    // The status the system holds right now (not published).
    [[nodiscard]] LaunchAtLoginStatus systemStatus() const;

    // Writes or removes the entry; publishes the failure text or clears it,
    // then the status re-read from disk.
    void setEnabled(bool enabled);

    [[nodiscard]] const AutostartEntry& entry() const noexcept { return m_entry; }

Q_SIGNALS:
    void objectWillChange();
    void statusChanged(brenvik::LaunchAtLoginStatus status);
    void lastErrorChanged(const std::optional<QString>& lastError);

private:
    AutostartEntry m_entry;
    LaunchAtLoginStatus m_status = LaunchAtLoginStatus::notRegistered;
    std::optional<QString> m_lastError;
};

} // namespace brenvik
