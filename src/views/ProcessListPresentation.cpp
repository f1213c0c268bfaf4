#include "views/ProcessListPresentation.h"

#include <QCoreApplication>
#include <QStringList>

namespace brenvik {

namespace {

struct ProcessListText {
    Q_DECLARE_TR_FUNCTIONS(ProcessListText)
};

} // namespace

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
        return ProcessListText::tr(
                   "No process list available while detection is in an error state. %1")
            .arg(*lastError);
    if (!lastUpdated)
        return ProcessListText::tr("Checking the local process list\u2026");
    return ProcessListText::tr("No matching Codex CLI processes found.");
}

QString statusLabel(ProcessActivityStatus status) {
    switch (status) {
    case ProcessActivityStatus::running:
        return ProcessListText::tr("Running");
    case ProcessActivityStatus::waiting:
        return ProcessListText::tr("Waiting for you");
    case ProcessActivityStatus::idle:
        break;
    }
    return ProcessListText::tr("Idle");
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
        parts << ProcessListText::tr("%1 % context left").arg(*match.contextLeftPercent);
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
    // English, the source language, loads no translation: its singular is a text of its own.
    lines << (processes == 1 ? ProcessListText::tr("PID %1 \u00B7 1 process").arg(match.pid)
                             : ProcessListText::tr("PID %1 \u00B7 %n processes", nullptr,
                                                   static_cast<int>(processes))
                                   .arg(match.pid));
    if (match.startedAt)
        lines << ProcessListText::tr("Started %1")
                     .arg(locale.toString(match.startedAt->toLocalTime(), QLocale::ShortFormat));
    lines << (match.source == StatusSource::log ? ProcessListText::tr("Status from its session log")
                                                : ProcessListText::tr("Status from its CPU use"));
    if (const QString usage = processRowUsageText(match); !usage.isEmpty())
        lines << usage;
    if (match.tokens)
        lines << ProcessListText::tr("%1 tokens used").arg(locale.toString(*match.tokens));
    return lines.join(u'\n');
}

} // namespace brenvik
