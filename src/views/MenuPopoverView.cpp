#include "views/MenuPopoverView.h"

#include "views/StatusPresentation.h"
#include "views/StatusViews.h"
#include "views/ViewStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace brenvik {

MenuPopoverView::MenuPopoverView(CodexProcessMonitor& monitor, ViewActions& actions,
                                 QWidget* parent)
    : MonitorStatusView(monitor, actions, parent)
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
    column->addWidget(header());
    column->addLayout(buttonRow);

    connect(m_openButton, &StyledButton::clicked, this, [this] { m_actions.openControlPanel(); });
    // "Waiting for you: website" takes the user to website's session.
    header()->setWaitingClickable(true);
    connect(header(), &StatusHeaderView::waitingClicked, this, [this] {
        if (const std::optional<qint64> pid = firstWaitingSession(m_monitor.matches()))
            m_actions.goToSession(*pid);
    });
}

} // namespace brenvik
