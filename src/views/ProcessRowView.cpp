#include "views/ProcessRowView.h"

#include "views/CommandText.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace brenvik {

StatusCapsule::StatusCapsule(QWidget* parent)
    : StyledLabel(TextStyle::caption2, FontWeight::semibold, NamedColor::secondary, parent) {
    setContentsMargins(6, 2, 6, 2);
    setAlignment(Qt::AlignCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setStatus(ProcessActivityStatus::idle);
}

void StatusCapsule::setStatus(ProcessActivityStatus status) {
    m_status = status;
    const bool running = status == ProcessActivityStatus::running;
    setText(running ? QStringLiteral("Running") : QStringLiteral("Idle"));
    setColor(running ? NamedColor::black : NamedColor::secondary);
    update();
}

void StatusCapsule::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette inherited = inheritedPalette(*this);
    const QColor fill = m_status == ProcessActivityStatus::running
                            ? withOpacity(namedColor(NamedColor::yellow, inherited), 0.9)
                            : withOpacity(namedColor(NamedColor::secondary, inherited), 0.16);
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

ProcessRowView::ProcessRowView(const ProcessMatch& match, QWidget* parent)
    : QWidget(parent)
    , m_pid(new StyledLabel(TextStyle::caption, FontWeight::semibold, NamedColor::primary, this))
    , m_capsule(new StatusCapsule(this))
    , m_command(new CommandLabel(this)) {
    setFixedHeight(kHeight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    auto* top = new QHBoxLayout;
    top->setContentsMargins(0, 0, 0, 0);
    top->setSpacing(8);
    top->addWidget(m_pid, 0, Qt::AlignVCenter);
    top->addStretch(1);
    top->addWidget(m_capsule, 0, Qt::AlignVCenter);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);
    column->addLayout(top);
    column->addWidget(m_command);
    column->addStretch(1);

    m_match.pid = -1; // so that the first setMatch fills every field
    setMatch(match);
}

void ProcessRowView::setMatch(const ProcessMatch& match) {
    if (match.pid != m_match.pid)
        m_pid->setText(tr("PID ") + QString::asprintf("%lld", static_cast<long long>(match.pid)));
    if (match.status != m_match.status || m_match.pid == -1)
        m_capsule->setStatus(match.status);
    // Same text: leave the label alone, which keeps the user's selection.
    if (match.command != m_match.command || m_match.pid == -1) {
        const QString shown = shownCommand(match.command);
        m_command->setText(shown);
        m_command->setToolTip(shown == match.command.trimmed() ? QString()
                                                               : match.command.trimmed());
    }
    m_match = match;
}

} // namespace brenvik
