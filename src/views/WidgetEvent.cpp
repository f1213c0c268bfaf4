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

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == m_type && !m_reacting) {
            m_reacting = true;
            m_react();
            m_reacting = false;
        }
        return false;
    }

private:
    QEvent::Type m_type;
    std::function<void()> m_react;
    bool m_reacting = false;
};

} // namespace

void onWidgetEvent(QWidget* widget, QEvent::Type type, std::function<void()> react) {
    new WidgetEventFilter(widget, type, std::move(react));
}

} // namespace brenvik
