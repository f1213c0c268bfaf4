#pragma once

#include "monitor/ProcessMonitoring.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

namespace brenvik {

// One desktop notification to show: a session finished, or waits for the
// user. Several sessions that changed in the same refresh share one.
struct Announcement {
    enum class Kind { finished, waiting };
    Kind kind = Kind::finished;
    QList<qint64> pids; // the sessions it names, by root PID
    QString summary;
    QString body;

    friend bool operator==(const Announcement&, const Announcement&) = default;
};

// Decides, from one published state to the next, what to announce: a session
// that worked at least 10 s and went idle or ended (codex exec ends with its
// turn), and a session that started waiting. It announces nothing about what
// was so when it first looked, nothing while detection fails, and nothing
// when turned off. Work is a turn its log saw, or CPU use after Codex's own
// start-up: a TUI nobody typed into is no news.
class NotificationPolicy {
public:
    static constexpr qint64 kMinimumWorkSeconds = 10;
    // A Codex TUI burns a core for several seconds while it starts.
    static constexpr qint64 kStartUpSeconds = 10;

    struct Decision {
        QList<Announcement> show;
        QList<qint64> stoppedWaiting; // their "waiting" notices are over
    };

    [[nodiscard]] Decision update(const QList<ProcessMatch>& matches, bool detectionFailed,
                                  bool enabled, const QDateTime& now);

private:
    struct Seen {
        ProcessMatch match;                    // as last seen
        std::optional<QDateTime> workingSince; // while running
    };

    bool m_started = false;
    QHash<qint64, Seen> m_seen;
};

} // namespace brenvik
