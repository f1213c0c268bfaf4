#include "views/MenuPopoverView.h"

#include "views/CoalescedUpdate.h"
#include "views/StatusViews.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace brenvik {

ProminentButton::ProminentButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent) {
    setCursor(Qt::PointingHandCursor);
    applyPalette();
}

void ProminentButton::changeEvent(QEvent* event) {
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_applying)
        applyPalette();
}

void ProminentButton::applyPalette() {
    m_applying = true;
    const QPalette inherited = parentWidget() ? parentWidget()->palette() : palette();
    const QColor accent = inherited.color(QPalette::Highlight);
    const QColor label = inherited.color(QPalette::HighlightedText);
    // A style sheet built from the palette, rebuilt when the palette changes.
    setStyleSheet(QStringLiteral("QPushButton { background-color: %1; color: %2; border: none;"
                                 " border-radius: 6px; padding: 5px 16px; }"
                                 "QPushButton:hover { background-color: %3; }"
                                 "QPushButton:pressed { background-color: %4; }"
                                 "QPushButton:focus { outline: none; }")
                      .arg(accent.name(), label.name(), accent.lighter(108).name(),
                           accent.darker(115).name()));
    m_applying = false;
}

MenuPopoverView::MenuPopoverView(CodexProcessMonitor& monitor, ViewActions& actions,
                                 QWidget* parent)
    : QWidget(parent)
    , m_monitor(monitor)
    , m_actions(actions)
    , m_updates(new CoalescedUpdate([this] { updateFromMonitor(); }, this))
    , m_header(new StatusHeaderView(monitor.runState(), monitor.summary(), this))
    , m_openButton(new ProminentButton(tr("Open Control Panel"), this)) {
    setFixedWidth(kWidth);
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
    column->setSizeConstraint(QLayout::SetMinAndMaxSize);

    connect(m_openButton, &QPushButton::clicked, this, [this] { m_actions.openControlPanel(); });
    m_updates->observe(&m_monitor);
}

int MenuPopoverView::updateCount() const {
    return m_updates->count();
}

void MenuPopoverView::updateFromMonitor() {
    m_header->setState(m_monitor.runState(), m_monitor.summary());
}

} // namespace brenvik
