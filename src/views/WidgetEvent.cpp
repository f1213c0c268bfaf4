#include "views/WidgetEvent.h"

#include <QWidget>

namespace brenvik {

namespace {

class WidgetEventFilter : public QObject {
public:
    WidgetEventFilter(QWidget* widget, QEvent::Type type, std::function<void()> react)
        : QObject(widget)
        , m_type(type)
        , m_react(std::move(react)) {
        widget->installEventFilter(this);
    }

    void react() {
        if (m_reacting)
            return;
        m_reacting = true;
        m_react();
        m_reacting = false;
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == m_type)
            react();
        return false;
    }

private:
    QEvent::Type m_type;
    std::function<void()> m_react;
    bool m_reacting = false;
};

} // namespace

std::function<void()> onWidgetEvent(QWidget* widget, QEvent::Type type,
                                    std::function<void()> react) {
    // Owned by the widget, which alone calls what is returned.
    auto* filter = new WidgetEventFilter(widget, type, std::move(react));
    return [filter] { filter->react(); };
}

} // namespace brenvik
