#pragma once

#include <QSettings>
#include <QString>
#include <QStringView>
#include <memory>
#include <optional>

namespace brenvik {

// The preferences Brenvik keeps between runs, their keys and defaults in one
// place: one object, made by the app and handed to every controller that
// changes one, so that all of them read and write the same file.
class StoredPreferences {
public:
    // Each an on/off switch that is on unless it clearly says off: absent or
    // unreadable values leave it on.
    static constexpr QStringView kShowDockIcon = u"showDockIcon";
    static constexpr QStringView kNotifySessions = u"notifySessions";

    // The native settings of "Brenvik"/"Brenvik", or an INI file (tests).
    explicit StoredPreferences(const QString& settingsFile = {});
    ~StoredPreferences();
    StoredPreferences(const StoredPreferences&) = delete;
    StoredPreferences& operator=(const StoredPreferences&) = delete;

    [[nodiscard]] bool isOn(QStringView key) const;
    // Stores at once. On failure the text to show in red: the choice holds
    // until Brenvik quits.
    [[nodiscard]] std::optional<QString> store(QStringView key, bool on);

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace brenvik
