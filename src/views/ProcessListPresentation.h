#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

namespace brenvik {

// How the process list shows n matches: a text, a plain stack of rows, or a
// scrolling list once the rows no longer fit the list area.
enum class ProcessListForm { placeholder, plainStack, scrollingList };

// Three rows of 38 with 6-point gaps fill the 126-point list area exactly.
inline constexpr qsizetype kPlainStackMaximumRows = 3;

[[nodiscard]] ProcessListForm processListForm(qsizetype matchCount);

// The text of an empty list: the error first, then "still checking", then
// "nothing found".
[[nodiscard]] QString processListPlaceholder(const std::optional<QString>& lastError,
                                             const std::optional<QDateTime>& lastUpdated);

} // namespace brenvik
