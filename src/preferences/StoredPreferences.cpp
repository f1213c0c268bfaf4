#include "preferences/StoredPreferences.h"

#include "detection/FailureLog.h"
#include "preferences/PreferencesLogging.h"

#include <QCoreApplication>

namespace brenvik {

StoredPreferences::StoredPreferences(const QString& settingsFile)
    : m_settings(settingsFile.isEmpty()
                     ? std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                   QStringLiteral("Brenvik"),
                                                   QStringLiteral("Brenvik"))
                     : std::make_unique<QSettings>(settingsFile, QSettings::IniFormat)) {}

StoredPreferences::~StoredPreferences() = default;

bool StoredPreferences::isOn(QStringView key) const {
    const QVariant value = m_settings->value(key.toString());
    if (!value.isValid())
        return true;
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    const QString text = value.toString().trimmed().toLower();
    return text != u"false" && text != u"0";
}

std::optional<QString> StoredPreferences::store(QStringView key, bool on) {
    m_settings->setValue(key.toString(), on);
    m_settings->sync();
    if (m_settings->status() == QSettings::NoError) {
        failureCleared(m_settings->fileName());
        return std::nullopt;
    }
    logFailureOnce(lcPreferences(), m_settings->fileName(),
                   QStringLiteral("cannot write the settings file %1").arg(m_settings->fileName()));
    return QCoreApplication::translate("StoredPreferences",
                                       "The preference could not be saved to %1. It applies "
                                       "until Brenvik quits.")
        .arg(m_settings->fileName());
}

} // namespace brenvik
