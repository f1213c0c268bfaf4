#pragma once

#include <QString>
#include <QVariant>

namespace brenvik {

// A stored on/off preference that is on unless it clearly says off: absent or
// unreadable values leave it on.
[[nodiscard]] inline bool storedSwitchIsOn(const QVariant& value) {
    if (!value.isValid())
        return true;
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    const QString text = value.toString().trimmed().toLower();
    return text != u"false" && text != u"0";
}

} // namespace brenvik
