#include "views/StatusPresentation.h"

#include <QCoreApplication>

namespace brenvik {

namespace {

struct StatusText {
    Q_DECLARE_TR_FUNCTIONS(StatusText)
};

} // namespace

StateColor stateColor(const CodexRunState& state) {
    return state.visit(
        [](const CodexRunState::Observed& o) {
            if (o.waiting > 0)
                return StateColor::violet;
            return o.running > 0 ? StateColor::yellow : StateColor::green;
        },
        [](const CodexRunState::Error&) { return StateColor::red; },
        [](const CodexRunState::Idle&) { return StateColor::green; });
}

QString badgeText(const CodexRunState& state) {
    return state.visit(
        [](const CodexRunState::Observed& o) {
            return o.total > 99 ? QStringLiteral("99+") : QString::number(o.total);
        },
        [](const CodexRunState::Error&) { return QStringLiteral("!"); },
        [](const CodexRunState::Idle&) { return QString(); });
}

QString waitingText(const CodexRunState& state) {
    const auto* observed = state.asObserved();
    if (!observed || observed->waitingProjects.isEmpty())
        return {};
    return StatusText::tr("Waiting for you: %1").arg(observed->waitingProjects.join(u", "));
}

QList<SessionMenuItem> sessionMenuItems(const QList<ProcessMatch>& matches, const QString& home) {
    QList<SessionMenuItem> items;
    for (const ProcessActivityStatus status :
         {ProcessActivityStatus::waiting, ProcessActivityStatus::running}) {
        for (const ProcessMatch& match : matches) {
            if (match.status == status)
                items.append({match.pid, projectName(match, home) + u" \u00B7 " +
                                             (status == ProcessActivityStatus::waiting
                                                  ? StatusText::tr("Waiting for you")
                                                  : StatusText::tr("Running"))});
        }
    }
    return items;
}

std::optional<qint64> firstWaitingSession(const QList<ProcessMatch>& matches) {
    for (const ProcessMatch& match : matches) {
        if (match.status == ProcessActivityStatus::waiting)
            return match.pid;
    }
    return std::nullopt;
}

QString missingTrayText(QStringView currentDesktop) {
    // GNOME has no tray of its own; elsewhere a panel usually has one to add.
    for (const QStringView desktop : currentDesktop.split(u':')) {
        if (desktop.compare(u"GNOME", Qt::CaseInsensitive) == 0)
            return StatusText::tr(
                "No tray for the icon: install gnome-shell-extension-appindicator");
    }
    return StatusText::tr("No tray for the icon: add one to your panel, or install trayer");
}

} // namespace brenvik
