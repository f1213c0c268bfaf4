#pragma once

#include "monitor/ProcessMonitoring.h"
#include "places/SessionPlace.h"
#include "places/SessionPlaceFinder.h"

#include <QDateTime>
#include <QHash>
#include <functional>
#include <optional>

namespace brenvik {

// The place of every session, looked up once when the session first
// appears: a refresh that brings no new session asks nothing of tmux or
// the X server.
class SessionPlaces {
public:
    using Finder = std::function<PlaceLookup(const SessionQuery&)>;

    // Finds places with findSessionPlace() on the system.
    SessionPlaces();
    explicit SessionPlaces(Finder finder)
        : m_finder(std::move(finder)) {}

    // Looks up the sessions seen for the first time; forgets those that ended.
    void update(const QList<ProcessMatch>& matches);

    // The place found when the session appeared; none for a session not
    // seen by update().
    [[nodiscard]] std::optional<PlaceLookup> lookupOf(qint64 pid) const;

private:
    struct Entry {
        std::optional<QDateTime> startedAt; // a reused PID is another session
        PlaceLookup lookup;
    };
    Finder m_finder;
    QHash<qint64, Entry> m_entries;
};

} // namespace brenvik
