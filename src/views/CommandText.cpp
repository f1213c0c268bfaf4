#include "views/CommandText.h"

#include <QTextBoundaryFinder>

namespace brenvik {

QString shownCommand(QStringView command) {
    const QString trimmed = command.trimmed().toString();
    // Counting UTF-16 units would cut emoji and combining marks in half.
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, trimmed);
    qsizetype count = 0;
    qsizetype cutAt = -1;
    const qsizetype keep = kShownCommandLimit - 3;
    while (graphemes.toNextBoundary() != -1) {
        ++count;
        if (count == keep)
            cutAt = graphemes.position();
        if (count > kShownCommandLimit)
            return trimmed.left(cutAt) + QStringLiteral("...");
    }
    return trimmed;
}

} // namespace brenvik
