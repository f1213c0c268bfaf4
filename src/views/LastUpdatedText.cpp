#include "views/LastUpdatedText.h"

namespace brenvik {

QString lastUpdatedText(const std::optional<QDateTime>& lastUpdated, const QLocale& locale) {
    if (!lastUpdated)
        return QStringLiteral("Checking now");
    return QStringLiteral("Updated ") +
           locale.toString(lastUpdated->toLocalTime().time(), QLocale::ShortFormat);
}

} // namespace brenvik
