#include "views/StatusViews.h"

#include "views/LastUpdatedText.h"
#include "views/StatusDotShape.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace brenvik {

namespace {
constexpr qreal kDotDiameter = 11;
constexpr int kDotMinimumWidth = 14;
// Between the title, the summary and the waiting line.
constexpr int kTextSpacing = 2;
} // namespace

NamedColor namedColor(StateColor color) {
    switch (color) {
    case StateColor::green:
        return NamedColor::green;
    case StateColor::yellow:
        return NamedColor::yellow;
    case StateColor::violet:
        return NamedColor::violet;
    case StateColor::red:
        return NamedColor::red;
    }
    return NamedColor::green;
}

StatusDotShapeView::StatusDotShapeView(StateColor color, QWidget* parent)
    : QWidget(parent)
    , m_color(color) {
    setMinimumSize(kDotMinimumWidth, int(kDotDiameter));
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

void StatusDotShapeView::setColor(StateColor color) {
    if (color == m_color)
        return;
    m_color = color;
    update();
}

NamedColor StatusDotShapeView::color() const noexcept {
    return namedColor(m_color);
}

void StatusDotShapeView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF dot((width() - kDotDiameter) / 2.0, (height() - kDotDiameter) / 2.0, kDotDiameter,
                     kDotDiameter);
    const QPainterPath outline = statusDotShape(m_color, dot).outline;
    painter.setPen(Qt::NoPen);
    painter.setBrush(brenvik::namedColor(color(), palette()));
    painter.drawPath(outline);
    QPen ring(withOpacity(brenvik::namedColor(NamedColor::primary, palette()), 0.25), 0.6);
    ring.setCapStyle(Qt::FlatCap);
    ring.setJoinStyle(Qt::RoundJoin);
    painter.setPen(ring);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(outline);
}

StatusHeaderView::StatusHeaderView(const CodexRunState& state, const QString& summary,
                                   QWidget* parent)
    : QWidget(parent)
    , m_dot(new StatusDotShapeView(StateColor::green, this))
    , m_summary(new StyledLabel(TextStyle::subheadline, NamedColor::secondary, this))
    , m_waiting(
          new ElidingLabel(TextStyle::subheadline, FontWeight::semibold, NamedColor::violet, this))
    , m_limits(new StyledLabel(TextStyle::caption, NamedColor::secondary, this))
    , m_badge(new StyledLabel(TextStyle::title3, FontWeight::bold, NamedColor::green, this)) {
    auto* title = new StyledLabel(TextStyle::headline, NamedColor::primary, this);
    title->setText(tr("Codex CLI Status"));

    auto* texts = new QVBoxLayout;
    texts->setSpacing(kTextSpacing);
    texts->setContentsMargins(0, 0, 0, 0);
    texts->addWidget(title);
    texts->addWidget(m_summary);
    texts->addWidget(m_waiting);
    texts->addWidget(m_limits);
    m_limits->hide();

    // The UI fonts Brenvik meets (DejaVu, Cantarell, Noto) draw digits at one
    // width already, so the badge does not jump as the count changes; Qt 6.4
    // has no switch for tabular figures.
    m_badge->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    row->addWidget(m_dot, 0, Qt::AlignVCenter);
    row->addLayout(texts);
    row->addStretch(1);
    row->addWidget(m_badge, 0, Qt::AlignVCenter);

    setState(state, summary);
}

void StatusHeaderView::setState(const CodexRunState& state, const QString& summary) {
    const StateColor stateColor = brenvik::stateColor(state);
    const NamedColor color = namedColor(stateColor);
    m_dot->setColor(stateColor);
    m_summary->setText(summary);
    const QString waiting = brenvik::waitingText(state);
    m_waiting->setFullText(waiting);
    m_waiting->setVisible(!waiting.isEmpty());
    const QString badge = brenvik::badgeText(state);
    m_badge->setText(badge);
    m_badge->setColor(color);
    m_badge->setVisible(!badge.isEmpty());
}

void StatusHeaderView::setWaitingClickable(bool clickable) {
    m_waitingClickable = clickable;
    if (clickable) {
        m_waiting->setCursor(Qt::PointingHandCursor);
        m_waiting->installEventFilter(this);
    } else {
        m_waiting->unsetCursor();
        m_waiting->removeEventFilter(this);
    }
}

bool StatusHeaderView::eventFilter(QObject* watched, QEvent* event) {
    // Taking the press makes the release come here too.
    if (watched == m_waiting && m_waitingClickable && event->type() == QEvent::MouseButtonPress)
        return true;
    if (watched == m_waiting && m_waitingClickable && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton &&
        m_waiting->rect().contains(static_cast<QMouseEvent*>(event)->position().toPoint())) {
        Q_EMIT waitingClicked();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

QString StatusHeaderView::summaryText() const {
    return m_summary->text();
}

QString StatusHeaderView::badgeText() const {
    return m_badge->isHidden() ? QString() : m_badge->text();
}

QString StatusHeaderView::waitingText() const {
    return m_waiting->isHidden() ? QString() : m_waiting->fullText();
}

void StatusHeaderView::setLimits(const QStringList& lines, LimitsLevel level) {
    m_limits->setText(lines.join(u'\n'));
    m_limits->setColor(level == LimitsLevel::critical  ? NamedColor::red
                       : level == LimitsLevel::warning ? NamedColor::orange
                                                       : NamedColor::secondary);
    m_limits->setVisible(!lines.isEmpty());
}

QString StatusHeaderView::limitsText() const {
    return m_limits->isHidden() ? QString() : m_limits->text();
}

NamedColor StatusHeaderView::limitsColor() const {
    return m_limits->color();
}

int StatusHeaderView::waitingLineHeight() const {
    return m_waiting->sizeHint().height() + kTextSpacing;
}

LastUpdatedLabel::LastUpdatedLabel(const std::optional<QDateTime>& lastUpdated, QWidget* parent)
    : StyledLabel(TextStyle::caption, NamedColor::secondary, parent) {
    setLastUpdated(lastUpdated);
}

void LastUpdatedLabel::setLastUpdated(const std::optional<QDateTime>& lastUpdated) {
    setText(lastUpdatedText(lastUpdated));
}

} // namespace brenvik
