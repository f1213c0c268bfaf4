#pragma once

#include "preferences/LaunchAtLoginStatus.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace brenvik {

// The option the autostart entry starts brenvik with: into the tray, without
// opening the control panel at every login.
inline constexpr QStringView kAutostartOption = u"--autostart";

// Exec= of a desktop entry as it stands in the file: each argument quoted
// where the Desktop Entry rules ask for it, "%" doubled, then the string-level
// escaping of backslashes (and of line breaks and tabs).
[[nodiscard]] QString desktopEntryExecValue(const QStringList& arguments);

// The arguments of an Exec= value as read from the file, by the same rules;
// none when a quote is left open. Field codes other than "%%" are dropped.
[[nodiscard]] std::optional<QStringList> parseDesktopEntryExecValue(QStringView value);

// Whether a desktop entry asks to be started: not Hidden=true and not
// X-GNOME-Autostart-enabled=false, read from its [Desktop Entry] group.
[[nodiscard]] bool desktopEntryIsActive(const QByteArray& contents);

// Brenvik's XDG autostart entry, brenvik.desktop in the autostart directory:
// the login item of the desktop session.
class AutostartEntry {
public:
    struct Location {
        QString directory;          // the autostart directory
        QString executable;         // the program the entry starts
        QStringList temporaryRoots; // folders an executable must not live in
    };

    // $XDG_CONFIG_HOME/autostart and this process's executable.
    AutostartEntry();
    explicit AutostartEntry(Location location);

    // $XDG_CONFIG_HOME/autostart; ~/.config/autostart when that is unset or
    // not absolute, as the base directory rules say.
    [[nodiscard]] static QString defaultDirectory();
    // Where programs only pass through (/tmp, AppImage mounts, unpacked archives).
    [[nodiscard]] static QStringList defaultTemporaryRoots();

    [[nodiscard]] QString filePath() const;
    [[nodiscard]] const QString& executable() const noexcept { return m_location.executable; }

    // A login item must start the same program next session: a named, existing
    // file outside the temporary folders. Otherwise, why not, for the user.
    [[nodiscard]] std::optional<QString> unstableExecutableReason() const;
    [[nodiscard]] bool hasStableExecutable() const { return !unstableExecutableReason(); }

    // enabled: our entry is there and active; otherwise notFound without a
    // stable executable, else notRegistered.
    [[nodiscard]] LaunchAtLoginStatus status() const;

    // The whole entry as written.
    [[nodiscard]] QByteArray contents() const;

    // Write atomically / remove. The system's error text on failure.
    [[nodiscard]] std::optional<QString> install() const;
    [[nodiscard]] std::optional<QString> remove() const;

private:
    Location m_location;
};

} // namespace brenvik
