#pragma once

#include <QEvent>
#include <functional>

class QWidget;

namespace brenvik {

// Calls `react` whenever `widget` receives an event of `type`, for as long as
// the widget lives. An event that `react` itself causes does not call it again.
// Returns `react` behind the same guard, for the widget to call itself.
std::function<void()> onWidgetEvent(QWidget* widget, QEvent::Type type,
                                    std::function<void()> react);

} // namespace brenvik
