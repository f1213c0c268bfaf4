#include "views/ProcessListPresentation.h"

#include <QStringList>

namespace brenvik {

ProcessListForm processListForm(qsizetype matchCount) {
    if (matchCount <= 0)
        return ProcessListForm::placeholder;
    if (matchCount <= kPlainStackMaximumRows)
        return ProcessListForm::plainStack;
    return ProcessListForm::scrollingList;
}

QString processListPlaceholder(const std::optional<QString>& lastError,
                               const std::optional<QDateTime>& lastUpdated) {
    if (lastError)
        return QStringLiteral("No process list available while detection is in an error state. ") +
               *lastError;
    if (!lastUpdated)
        return QStringLiteral("Checking the local process list\u2026");
    return QStringLiteral("No matching Codex CLI processes found.");
}

QString statusLabel(ProcessActivityStatus status) {
    switch (status) {
    case ProcessActivityStatus::running:
        return QStringLiteral("Running");
    case ProcessActivityStatus::waiting:
        return QStringLiteral("Waiting for you");
    case ProcessActivityStatus::idle:
        break;
    }
    return QStringLiteral("Idle");
}

QString durationText(const QDateTime& since, const QDateTime& now) {
    return durationText(since.secsTo(now));
}

QString statusCapsuleText(const ProcessMatch& match, const QDateTime& now) {
    const QString label = statusLabel(match.status);
    if (!match.since)
        return label;
    return label + u" \u00B7 " + durationText(*match.since, now);
}

QString processRowTitle(const ProcessMatch& match, const QString& home) {
    if (match.cwd.isEmpty())
        return QStringLiteral("PID ") + QString::number(match.pid);
    return abbreviatedDirectory(match.cwd, home);
}

QString processRowUsageText(const ProcessMatch& match) {
    QStringList parts;
    if (!match.model.isEmpty())
        parts << match.model;
    if (match.contextLeftPercent)
        parts << QString::number(*match.contextLeftPercent) + u" % context left";
    return parts.join(u" \u00B7 ");
}

QString processRowPlace(const SessionPlace& place) {
    QStringList parts;
    if (place.tmux)
        parts << u"tmux " + place.tmux->session + u':' + QString::number(place.tmux->window) +
                     u'.' + QString::number(place.tmux->pane);
    if (!place.terminal.isEmpty())
        parts << place.terminal;
    return parts.join(u" \u00B7 ");
}

QString processRowToolTip(const ProcessMatch& match, const QString& home, const QLocale& locale) {
    QStringList lines;
    if (!match.cwd.isEmpty())
        lines << abbreviatedDirectory(match.cwd, home);
    const qint64 processes = std::max<qint64>(1, match.processCount);
    lines << QStringLiteral("PID %1 \u00B7 %2 %3")
                 .arg(match.pid)
                 .arg(processes)
                 .arg(processes == 1 ? QStringLiteral("process") : QStringLiteral("processes"));
    if (match.startedAt)
        lines << QStringLiteral("Started ") +
                     locale.toString(match.startedAt->toLocalTime(), QLocale::ShortFormat);
    lines << (match.source == StatusSource::log ? QStringLiteral("Status from its session log")
                                                : QStringLiteral("Status from its CPU use"));
    if (const QString usage = processRowUsageText(match); !usage.isEmpty())
        lines << usage;
    if (match.tokens)
        lines << locale.toString(*match.tokens) + u" tokens used";
    return lines.join(u'\n');
}

} // namespace brenvik
