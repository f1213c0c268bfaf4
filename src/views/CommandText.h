#pragma once

#include <QString>
#include <QStringView>

namespace brenvik {

// Longest command a row shows, in user-perceived characters.
inline constexpr qsizetype kShownCommandLimit = 110;

// The command as a row shows it: trimmed; 111 or more grapheme clusters become
// the first 107 and "...".
[[nodiscard]] QString shownCommand(QStringView command);

} // namespace brenvik
