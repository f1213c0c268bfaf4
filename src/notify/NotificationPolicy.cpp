#include "notify/NotificationPolicy.h"

#include <QCoreApplication>

namespace brenvik {

namespace {

struct NoticeText {
    Q_DECLARE_TR_FUNCTIONS(NoticeText)
};

QString names(const QList<ProcessMatch>& sessions) {
    QStringList projects;
    for (const ProcessMatch& match : sessions)
        projects.append(projectName(match));
    return projects.join(u", ");
}

} // namespace

NotificationPolicy::Decision NotificationPolicy::update(const QList<ProcessMatch>& matches,
                                                        bool detectionFailed, bool enabled,
                                                        const QDateTime& now) {
    Decision decision;
    // A failed refresh shows no sessions: remember nothing of it, so that
    // sessions seen again after it are not taken for new changes.
    if (detectionFailed)
        return decision;

    QList<ProcessMatch> finished;
    QList<qint64> workedSeconds;
    QList<ProcessMatch> waiting;
    // `last` is how the session looks now, or last looked where it ended.
    const auto finish = [&](const Seen& before, const ProcessMatch& last, const QDateTime& end) {
        if (before.match.status != ProcessActivityStatus::running || !before.workingSince)
            return;
        QDateTime workedFrom = *before.workingSince;
        if (before.match.source == StatusSource::cpu && before.match.startedAt)
            workedFrom = std::max(workedFrom, before.match.startedAt->addSecs(kStartUpSeconds));
        if (const qint64 worked = workedFrom.secsTo(end); worked >= kMinimumWorkSeconds) {
            finished.append(last);
            workedSeconds.append(worked);
        }
    };
    QHash<qint64, Seen> seen;
    seen.reserve(matches.size());
    for (const ProcessMatch& match : matches) {
        const auto before = m_seen.constFind(match.pid);
        const bool known = before != m_seen.cend();
        Seen next{match, {}};
        if (match.status == ProcessActivityStatus::running) {
            next.workingSince = known && before->workingSince
                                    ? before->workingSince
                                    : std::optional<QDateTime>(match.since.value_or(now));
        }
        if (known) {
            if (match.status == ProcessActivityStatus::idle)
                finish(*before, match, match.since.value_or(now));
            if (before->match.status == ProcessActivityStatus::waiting &&
                match.status != ProcessActivityStatus::waiting)
                decision.stoppedWaiting.append(match.pid);
        }
        if (m_started && match.status == ProcessActivityStatus::waiting &&
            (!known || before->match.status != ProcessActivityStatus::waiting))
            waiting.append(match);
        seen.insert(match.pid, next);
    }
    for (auto it = m_seen.cbegin(); it != m_seen.cend(); ++it) {
        if (seen.contains(it.key()))
            continue;
        // It ended: a waiting notice is over; work it was doing is done.
        if (it->match.status == ProcessActivityStatus::waiting)
            decision.stoppedWaiting.append(it.key());
        finish(*it, it->match, now);
    }
    m_seen = std::move(seen);
    m_started = true;
    if (!enabled)
        return decision; // notices shown before it was turned off still close

    if (!finished.isEmpty()) {
        Announcement notice{.kind = Announcement::Kind::finished,
                            .pids = {},
                            .summary =
                                NoticeText::tr("Codex finished \u00B7 %1").arg(names(finished)),
                            .body = {}};
        for (const ProcessMatch& match : std::as_const(finished))
            notice.pids.append(match.pid);
        if (finished.size() == 1) {
            notice.body = NoticeText::tr("Worked %1").arg(durationText(workedSeconds.front()));
            if (const QString message = finished.front().lastMessage.left(120); !message.isEmpty())
                notice.body += u'\n' + message;
        } else {
            // Two or more: the English source has its plural only.
            notice.body =
                NoticeText::tr("%n sessions are done.", nullptr, static_cast<int>(finished.size()));
        }
        decision.show.append(notice);
    }
    if (!waiting.isEmpty()) {
        Announcement notice{
            .kind = Announcement::Kind::waiting,
            .pids = {},
            .summary = NoticeText::tr("Codex is waiting for you \u00B7 %1").arg(names(waiting)),
            .body = waiting.size() == 1 ? NoticeText::tr("A command needs your approval.")
                                        : NoticeText::tr("%n sessions need your approval.", nullptr,
                                                         static_cast<int>(waiting.size()))};
        for (const ProcessMatch& match : std::as_const(waiting))
            notice.pids.append(match.pid);
        decision.show.append(notice);
    }
    return decision;
}

} // namespace brenvik
