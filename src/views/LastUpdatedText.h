#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <optional>

namespace brenvik {

// "Checking now" until a refresh has ended, then "Updated " and the time of
// day in the locale's short time format (no date; it does not tick).
[[nodiscard]] QString lastUpdatedText(const std::optional<QDateTime>& lastUpdated,
                                      const QLocale& locale = QLocale::system());

} // namespace brenvik
