#include "views/ProcessListPresentation.h"

namespace brenvik {

ProcessListForm processListForm(qsizetype matchCount) {
    if (matchCount <= 0)
        return ProcessListForm::placeholder;
    if (matchCount <= kPlainStackMaximumRows)
        return ProcessListForm::plainStack;
    return ProcessListForm::scrollingList;
}

QString processListPlaceholder(const std::optional<QString>& lastError,
                               const std::optional<QDateTime>& lastUpdated) {
    if (lastError)
        return QStringLiteral("No process list available while detection is in an error state. ") +
               *lastError;
    if (!lastUpdated)
        return QStringLiteral("Checking the local process list\u2026");
    return QStringLiteral("No matching Codex CLI processes found.");
}

} // namespace brenvik
