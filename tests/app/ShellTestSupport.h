#pragma once

#include "app/TraySurface.h"
#include "notify/DesktopNotifier.h"
#include "tests/views/ViewTestSupport.h"

#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>

namespace brenvik::test {

// Stands in for the system tray: keeps what was pushed, and where the icon is.
class RecordingSurface : public TraySurface {
public:
    void setIcon(const QIcon& icon) override { icons.append(icon); }
    void setToolTip(const QString& text) override { toolTips.append(text); }
    void setSessionItems(const QList<SessionMenuItem>& items) override {
        sessionItems.append(items);
    }
    [[nodiscard]] QRect geometry() const override { return iconGeometry; }
    void click() { Q_EMIT triggered(); }
    using TraySurface::setHostAvailable;

    QList<QIcon> icons;
    QList<QString> toolTips;
    QList<QList<SessionMenuItem>> sessionItems;
    QRect iconGeometry;
};

// A notification server that shows what it is given, and nothing on the
// desktop of whoever runs the tests.
class RecordingNotificationBus : public NotificationBus {
public:
    void notify(quint32, const QString& summary, const QString&,
                std::function<void(quint32)> shown) override {
        summaries.append(summary);
        shown(quint32(summaries.size()));
    }
    void close(quint32) override {}

    QStringList summaries;
};

// Whether the control panel window scrolls its whole content.
inline bool panelScrolls(const QWidget& window) {
    const auto* scroll = window.findChild<QScrollArea*>(QString(), Qt::FindDirectChildrenOnly);
    return scroll && scroll->verticalScrollBar()->isVisible();
}

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
