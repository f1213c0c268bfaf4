#include "views/MenuPopoverView.h"

#include "views/CoalescedUpdate.h"
#include "views/StatusViews.h"
#include "views/ViewStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace brenvik {

MenuPopoverView::MenuPopoverView(CodexProcessMonitor& monitor, ViewActions& actions,
                                 QWidget* parent)
    : QWidget(parent)
    , m_monitor(monitor)
    , m_actions(actions)
    , m_updates(new CoalescedUpdate([this] { updateFromMonitor(); }, this))
    , m_header(new StatusHeaderView(monitor.runState(), monitor.summary(), this))
    , m_openButton(new StyledButton(tr("Open Control Panel"), StyledButton::prominent, this)) {
    // The owner sizes the popover: 300 wide, as high as the content asks.
    setFixedWidth(kWidth);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);

    auto* buttonRow = new QHBoxLayout;
    buttonRow->setContentsMargins(0, 0, 0, 0);
    buttonRow->addStretch(1);
    buttonRow->addWidget(m_openButton);
    buttonRow->addStretch(1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(14, 14, 14, 14);
    column->setSpacing(12);
    column->addWidget(m_header);
    column->addLayout(buttonRow);

    connect(m_openButton, &StyledButton::clicked, this, [this] { m_actions.openControlPanel(); });
    m_updates->observe(&m_monitor);
}

int MenuPopoverView::updateCount() const {
    return m_updates->count();
}

void MenuPopoverView::updateFromMonitor() {
    m_header->setState(m_monitor.runState(), m_monitor.summary());
}

} // namespace brenvik
