#pragma once

// For widget tests only: ViewTestSupport.h serves tests without widgets too.

#include <QLabel>
#include <QStringList>

namespace brenvik::test {

// The texts in `window` a user cannot read in full where they are: cut at the
// bottom, or lying outside the window. Cutting a line short with "…" or a
// fade is on purpose and not counted.
inline QStringList cutTexts(const QWidget& window) {
    QStringList cut;
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        if (!label->isVisibleTo(&window) || label->text().isEmpty())
            continue;
        const int needed =
            label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
        const QRect shown(label->mapTo(&window, QPoint()), label->size());
        if (label->height() < needed || !window.rect().contains(shown))
            cut.append(label->text());
    }
    return cut;
}

} // namespace brenvik::test
