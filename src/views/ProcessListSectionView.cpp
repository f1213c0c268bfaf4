#include "views/ProcessListSectionView.h"

#include "places/SessionPlaceTracker.h"
#include "views/CoalescedUpdate.h"
#include "views/ProcessRowsView.h"
#include "views/ViewStyle.h"
#include "views/WidgetEvent.h"

#include <QApplication>
#include <QEvent>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QShowEvent>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace brenvik {

namespace {
// Keeps the status capsules clear of the scroll bar.
constexpr int kScrollBarGap = 8;
} // namespace

ProcessListSectionView::ProcessListSectionView(CodexProcessMonitor& monitor, QWidget* parent,
                                               const SessionPlaceTracker* places)
    : QWidget(parent)
    , m_monitor(monitor)
    , m_places(places)
    , m_updates(new CoalescedUpdate([this] { updateFromMonitor(); }, this))
    , m_pages(new QStackedLayout(this))
    , m_placeholder(new StyledLabel(TextStyle::subheadline, NamedColor::secondary, this))
    , m_plainPage(new QWidget(this))
    , m_scroll(new QScrollArea(this))
    , m_rows(new ProcessRowsView({}, {}, m_plainPage)) {
    auto* placeholderPage = new QWidget(this);
    auto* placeholderLayout = new QVBoxLayout(placeholderPage);
    placeholderLayout->setContentsMargins(0, 0, 0, 0);
    placeholderLayout->setSpacing(0);
    m_placeholder->setParent(placeholderPage);
    m_placeholder->setWordWrap(true);
    m_placeholder->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_placeholder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    placeholderLayout->addWidget(m_placeholder);
    placeholderLayout->addStretch(1);

    auto* plainLayout = new QVBoxLayout(m_plainPage);
    plainLayout->setContentsMargins(0, 0, 0, 0);
    plainLayout->setSpacing(0);
    plainLayout->addWidget(m_rows);
    plainLayout->addStretch(1);

    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->viewport()->setAutoFillBackground(false);
    applySlimScrollBarStyle(m_scroll->verticalScrollBar());
    onWidgetEvent(this, QEvent::PaletteChange,
                  [this] { applySlimScrollBarStyle(m_scroll->verticalScrollBar()); });

    m_pages->addWidget(placeholderPage);
    m_pages->addWidget(m_plainPage);
    m_pages->addWidget(m_scroll);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);

    m_updates->observe(&m_monitor);
    if (m_places)
        connect(m_places, &SessionPlaceTracker::placesChanged, m_updates,
                &CoalescedUpdate::schedule);
    connect(m_rows, &ProcessRowsView::goRequested, this, &ProcessListSectionView::goRequested);
    updateFromMonitor();
}

QString ProcessListSectionView::placeholderText() const {
    return m_form == ProcessListForm::placeholder ? m_placeholder->text() : QString();
}

int ProcessListSectionView::updateCount() const {
    return m_updates->count();
}

void ProcessListSectionView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    setForm(fittingForm());
}

void ProcessListSectionView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    setForm(fittingForm());
}

ProcessListForm ProcessListSectionView::fittingForm() const {
    const ProcessListForm form = processListForm(m_monitor.matches().size());
    // Hidden, the section has no height of its own yet.
    if (form == ProcessListForm::plainStack && isVisible() &&
        m_rows->sizeHint().height() > height())
        return ProcessListForm::scrollingList;
    return form;
}

void ProcessListSectionView::updateFromMonitor() {
    QStringList places;
    if (m_places) {
        for (const ProcessMatch& match : m_monitor.matches())
            places.append(processRowPlace(m_places->placeOf(match.pid).value_or(SessionPlace{})));
    }
    // Durations count to the refresh that measured them.
    m_rows->setMatches(m_monitor.matches(),
                       m_monitor.lastUpdated().value_or(QDateTime::currentDateTimeUtc()), places);
    setForm(fittingForm());
    if (m_form == ProcessListForm::placeholder)
        m_placeholder->setText(
            processListPlaceholder(m_monitor.lastError(), m_monitor.lastUpdated()));
}

void ProcessListSectionView::setForm(ProcessListForm form) {
    if (form == m_form && m_pages->currentIndex() == int(form))
        return;
    // The one rows view moves between the plain page and the scroll area;
    // the selected row keeps the focus, which a move would take from it.
    QWidget* focused = QApplication::focusWidget();
    if (!m_rows->isAncestorOf(focused))
        focused = nullptr;
    if (form == ProcessListForm::scrollingList && m_scroll->widget() != m_rows) {
        m_rows->setContentsMargins(0, 0, kScrollBarGap, 0);
        m_scroll->setWidget(m_rows);
    } else if (form != ProcessListForm::scrollingList && m_scroll->widget() == m_rows) {
        m_scroll->takeWidget();
        m_rows->setContentsMargins(0, 0, 0, 0);
        static_cast<QVBoxLayout*>(m_plainPage->layout())->insertWidget(0, m_rows);
        m_rows->show();
    }
    m_form = form;
    m_pages->setCurrentIndex(int(form));
    if (focused)
        focused->setFocus();
}

} // namespace brenvik
