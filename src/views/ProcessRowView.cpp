#include "views/ProcessRowView.h"

#include "views/CommandText.h"
#include "views/ProcessListPresentation.h"

#include <QHBoxLayout>
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

ProcessRowView::ProcessRowView(const ProcessMatch& match, const QDateTime& now, QWidget* parent)
    : QWidget(parent)
    , m_title(new ElidingLabel(TextStyle::caption, FontWeight::semibold, NamedColor::primary, this))
    , m_capsule(new StatusCapsule(this))
    , m_command(new CommandLabel(this))
    , m_usage(new StyledLabel(TextStyle::caption, NamedColor::secondary, this)) {
    setFixedHeight(kHeight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    auto* top = new QHBoxLayout;
    top->setContentsMargins(0, 0, 0, 0);
    top->setSpacing(8);
    // A long path keeps its start and the project's own name.
    m_title->setElideMode(Qt::ElideMiddle);
    top->addWidget(m_title, 1, Qt::AlignVCenter);
    top->addWidget(m_capsule, 0, Qt::AlignVCenter);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);
    column->addLayout(top);
    auto* bottom = new QHBoxLayout;
    bottom->setContentsMargins(0, 0, 0, 0);
    bottom->setSpacing(8);
    bottom->addWidget(m_command, 1);
    bottom->addWidget(m_usage, 0); // whole: the command fades out first
    column->addLayout(bottom);
    column->addStretch(1);

    m_match.pid = -1; // so that the first setMatch fills every field
    setMatch(match, now);
    // Taller where a larger font needs it, so no descender is cut.
    setFixedHeight(std::max(kHeight, column->minimumSize().height()));
}

void ProcessRowView::setMatch(const ProcessMatch& match, const QDateTime& now) {
    m_title->setFullText(processRowTitle(match));
    const QString toolTip = processRowToolTip(match);
    setToolTip(toolTip);
    m_title->setToolTip(toolTip);
    // "How long" moves on with every refresh.
    m_capsule->setStatus(match.status, statusCapsuleText(match, now));
    m_usage->setText(processRowUsageText(match));
    m_usage->setVisible(!m_usage->text().isEmpty());
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
