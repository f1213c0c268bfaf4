#include "views/ProcessRowView.h"

#include "views/CommandText.h"
#include "views/ProcessListPresentation.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

namespace brenvik {

StatusCapsule::StatusCapsule(QWidget* parent)
    : StyledLabel(TextStyle::caption2, FontWeight::semibold, NamedColor::secondary, parent) {
    setContentsMargins(6, 2, 6, 2);
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setStatus(ProcessActivityStatus::idle, statusLabel(ProcessActivityStatus::idle));
}

void StatusCapsule::setStatus(ProcessActivityStatus status, const QString& text) {
    m_status = status;
    setText(text);
    switch (status) {
    case ProcessActivityStatus::running:
        setColor(NamedColor::black);
        break;
    case ProcessActivityStatus::waiting:
        setColor(NamedColor::onViolet);
        break;
    case ProcessActivityStatus::idle:
        setColor(NamedColor::secondary);
        break;
    }
    update();
}

void StatusCapsule::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette inherited = inheritedPalette(*this);
    QColor fill;
    switch (m_status) {
    case ProcessActivityStatus::running:
        fill = withOpacity(namedColor(NamedColor::yellow, inherited), 0.9);
        break;
    case ProcessActivityStatus::waiting:
        // Opaque, so the text on it keeps its contrast.
        fill = namedColor(NamedColor::violet, inherited);
        break;
    case ProcessActivityStatus::idle:
        fill = withOpacity(namedColor(NamedColor::secondary, inherited), 0.16);
        break;
    }
    const QRectF pill = QRectF(rect());
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
    painter.end();
    StyledLabel::paintEvent(event);
}

CommandLabel::CommandLabel(QWidget* parent)
    : StyledLabel(TextStyle::caption, NamedColor::secondary, parent) {
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setCursor(Qt::IBeamCursor);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setWordWrap(false);
}

void CommandLabel::paintEvent(QPaintEvent* event) {
    StyledLabel::paintEvent(event);
    constexpr int kFade = 28;
    if (fontMetrics().horizontalAdvance(text()) <= contentsRect().width())
        return;
    QPainter painter(this);
    const QColor background = namedColor(NamedColor::windowBackground, palette());
    QLinearGradient fade(width() - kFade, 0, width(), 0);
    fade.setColorAt(0, withOpacity(background, 0));
    fade.setColorAt(1, background);
    painter.fillRect(QRect(width() - kFade, 0, kFade, height()), fade);
}

GoToButton::GoToButton(QWidget* parent)
    : QAbstractButton(parent) {
    setText(tr("Go to"));
    setFont(styledFont(TextStyle::caption, FontWeight::semibold));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus); // Enter on the row does the same
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize GoToButton::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(text()) + 14, metrics.height() + 2};
}

void GoToButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette inherited = inheritedPalette(*this);
    const QColor accent = inherited.color(QPalette::Highlight);
    const QRectF pill = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(accent, 1));
    painter.setBrush(isDown() ? withOpacity(accent, 0.3)
                              : (underMouse() ? withOpacity(accent, 0.15) : Qt::transparent));
    painter.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
    painter.setPen(namedColor(NamedColor::primary, inherited));
    painter.drawText(rect(), Qt::AlignCenter, text());
}

ProcessRowView::ProcessRowView(const ProcessMatch& match, const QDateTime& now, QWidget* parent)
    : QWidget(parent)
    , m_title(new ElidingLabel(TextStyle::caption, FontWeight::semibold, NamedColor::primary, this))
    , m_capsule(new StatusCapsule(this))
    , m_command(new CommandLabel(this))
    , m_usage(new ElidingLabel(TextStyle::caption, NamedColor::secondary, this))
    , m_place(new StyledLabel(TextStyle::caption, NamedColor::secondary, this))
    , m_goTo(new GoToButton(this)) {
    setFixedHeight(kHeight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);

    auto* top = new QHBoxLayout;
    top->setContentsMargins(0, 0, 0, 0);
    top->setSpacing(8);
    // A long path keeps its start and the project's own name.
    m_title->setElideMode(Qt::ElideMiddle);
    top->addWidget(m_title, 1, Qt::AlignVCenter);
    // Where the title ends anyway: showing it moves nothing the user reads.
    top->addWidget(m_goTo, 0, Qt::AlignVCenter);
    top->addWidget(m_capsule, 0, Qt::AlignVCenter);

    auto* bottom = new QHBoxLayout;
    bottom->setContentsMargins(0, 0, 0, 0);
    bottom->setSpacing(8);
    bottom->addWidget(m_command, 1, Qt::AlignVCenter);
    // The command fades out first; then the usage gives way to the place.
    bottom->addWidget(m_usage, 0, Qt::AlignVCenter);
    bottom->addWidget(m_place, 0, Qt::AlignVCenter);
    m_goTo->hide();
    m_place->hide();
    connect(m_goTo, &GoToButton::clicked, this, [this] { Q_EMIT goRequested(m_match.pid); });

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);
    column->addLayout(top);
    column->addLayout(bottom);
    column->addStretch(1);

    m_match.pid = -1; // so that the first setMatch fills every field
    setMatch(match, now);
    // Taller where a larger font needs it, so no descender is cut.
    // Room for the Go to button too, which the layout leaves out while hidden.
    const int buttonExtra =
        std::max(0, m_goTo->sizeHint().height() -
                        std::max(m_title->sizeHint().height(), m_capsule->sizeHint().height()));
    setFixedHeight(std::max(kHeight, column->minimumSize().height() + buttonExtra));
}

void ProcessRowView::setMatch(const ProcessMatch& match, const QDateTime& now,
                              const QString& place) {
    m_place->setText(place);
    m_place->setVisible(!place.isEmpty());
    m_title->setFullText(processRowTitle(match));
    const QString toolTip = processRowToolTip(match);
    setToolTip(toolTip);
    m_title->setToolTip(toolTip);
    // "How long" moves on with every refresh.
    m_capsule->setStatus(match.status, statusCapsuleText(match, now));
    m_usage->setFullText(processRowUsageText(match));
    m_usage->setVisible(!m_usage->fullText().isEmpty());
    // Same text: leave the label alone, which keeps the user's selection.
    if (match.command != m_match.command || m_match.pid == -1) {
        const QString shown = shownCommand(match.command);
        m_command->setText(shown);
        m_command->setToolTip(shown == match.command.trimmed() ? QString()
                                                               : match.command.trimmed());
    }
    m_match = match;
}

QString ProcessRowView::placeText() const {
    return m_place->text();
}

bool ProcessRowView::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    switch (event->type()) {
    // The "Go to" button shows while the pointer is over the row or it has the focus.
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        m_goTo->setVisible(underMouse() || hasFocus());
        update();
        break;
    default:
        break;
    }
    return handled;
}

void ProcessRowView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Q_EMIT goRequested(m_match.pid);
        return;
    }
    QWidget::keyPressEvent(event);
}

void ProcessRowView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        Q_EMIT goRequested(m_match.pid);
        return;
    }
    QWidget::mouseDoubleClickEvent(event);
}

void ProcessRowView::paintEvent(QPaintEvent*) {
    // The selected row (the one Enter goes to) stands out; a hovered one faintly.
    if (!hasFocus() && !underMouse())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QColor accent = inheritedPalette(*this).color(QPalette::Highlight);
    painter.setBrush(withOpacity(accent, hasFocus() ? 0.16 : 0.07));
    painter.drawRoundedRect(QRectF(rect()), 5, 5);
}

} // namespace brenvik
