#include "places/SessionPlaces.h"

#include <QSet>

namespace brenvik {

SessionPlaces::SessionPlaces()
    : m_finder([environment = PlaceEnvironment::system()](const SessionQuery& query) {
        return findSessionPlace(query, environment);
    }) {}

void SessionPlaces::update(const QList<ProcessMatch>& matches) {
    QSet<qint64> alive;
    for (const ProcessMatch& match : matches) {
        alive.insert(match.pid);
        const auto known = m_entries.constFind(match.pid);
        if (known != m_entries.cend() && known->startedAt == match.startedAt)
            continue;
        m_entries.insert(match.pid, {match.startedAt, m_finder({match.pid, match.cwd})});
    }
    for (auto it = m_entries.begin(); it != m_entries.end();) {
        if (alive.contains(it.key()))
            ++it;
        else
            it = m_entries.erase(it);
    }
}

std::optional<PlaceLookup> SessionPlaces::lookupOf(qint64 pid) const {
    const auto entry = m_entries.constFind(pid);
    if (entry == m_entries.cend())
        return std::nullopt;
    return entry->lookup;
}

} // namespace brenvik
