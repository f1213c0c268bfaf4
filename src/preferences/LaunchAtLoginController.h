#pragma once

#include "preferences/AutostartEntry.h"
#include "preferences/LaunchAtLoginStatus.h"
#include "preferences/PreferenceController.h"

#include <QObject>
#include <QString>
#include <optional>

namespace brenvik {

// Registers Brenvik to start at login through an XDG autostart entry, and
// publishes what the disk holds. Published properties follow publish().
class LaunchAtLoginController : public PreferenceController {
    Q_OBJECT
    Q_PROPERTY(brenvik::LaunchAtLoginStatus status READ status WRITE setStatus NOTIFY statusChanged)

public:
    // Reads the current status at once. The default entry is this program's
    // in $XDG_CONFIG_HOME/autostart; tests pass their own.
    explicit LaunchAtLoginController(QObject* parent = nullptr);
    explicit LaunchAtLoginController(AutostartEntry entry, QObject* parent = nullptr);

    [[nodiscard]] LaunchAtLoginStatus status() const noexcept { return m_status; }
    void setStatus(LaunchAtLoginStatus status);

    // The status the system holds right now (not published).
    [[nodiscard]] LaunchAtLoginStatus systemStatus() const;

    // Writes or removes the entry; publishes the failure text or clears it,
    // then the status re-read from disk.
    void setEnabled(bool enabled);

    [[nodiscard]] const AutostartEntry& entry() const noexcept { return m_entry; }

Q_SIGNALS:
    void statusChanged(brenvik::LaunchAtLoginStatus status);

private:
    AutostartEntry m_entry;
    LaunchAtLoginStatus m_status = LaunchAtLoginStatus::notRegistered;
};

} // namespace brenvik
