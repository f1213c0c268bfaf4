#include "places/SessionPlaceTracker.h"

#include <QCoreApplication>
#include <QtConcurrent/QtConcurrentRun>
#include <algorithm>

namespace brenvik {

namespace {

struct PlaceText {
    Q_DECLARE_TR_FUNCTIONS(PlaceText)
};

} // namespace

SessionPlaceTracker::SessionPlaceTracker(CodexProcessMonitor& monitor, QObject* parent)
    : SessionPlaceTracker(
          monitor,
          [environment = PlaceEnvironment::system()](const SessionQuery& query) {
              return findSessionPlace(query, environment);
          },
          [](const SessionQuery& query, const std::optional<SessionPlace>& remembered) {
              return goToSession(query, PlaceEnvironment::system(), remembered);
          },
          parent) {}

SessionPlaceTracker::SessionPlaceTracker(CodexProcessMonitor& monitor, SessionPlaces::Finder finder,
                                         GoFunction go, QObject* parent)
    : QObject(parent)
    , m_monitor(monitor)
    , m_go(std::move(go))
    , m_places(std::make_shared<SessionPlaces>(std::move(finder))) {
    m_pool.setMaxThreadCount(1);
    connect(&m_watcher, &QFutureWatcher<Snapshot>::finished, this,
            &SessionPlaceTracker::onLookedUp);
    // Queued: the monitor announces its matches before it stores them.
    connect(&monitor, &CodexProcessMonitor::matchesChanged, this, &SessionPlaceTracker::lookUp,
            Qt::QueuedConnection);
}

SessionPlaceTracker::~SessionPlaceTracker() {
    m_watcher.disconnect(this);
    m_pool.waitForDone();
}

void SessionPlaceTracker::lookUp() {
    if (m_inFlight) {
        m_pending = true; // the latest matches, once this lookup ends
        return;
    }
    m_pending = false;
    std::vector<std::pair<qint64, qint64>> sessions;
    for (const ProcessMatch& match : m_monitor.matches())
        sessions.push_back(
            {match.pid, match.startedAt ? match.startedAt->toMSecsSinceEpoch() : -1});
    if (sessions == m_lookedUp)
        return;
    m_lookedUp = std::move(sessions);
    m_inFlight = true;
    m_watcher.setFuture(
        QtConcurrent::run(&m_pool, [places = m_places, matches = m_monitor.matches()] {
            places->update(matches); // asks only about sessions it has not seen
            Snapshot snapshot;
            for (const ProcessMatch& match : matches) {
                const std::optional<PlaceLookup> lookup = places->lookupOf(match.pid);
                if (lookup && lookup->place)
                    snapshot.insert(match.pid, *lookup->place);
            }
            return snapshot;
        }));
}

void SessionPlaceTracker::onLookedUp() {
    m_inFlight = false;
    Snapshot snapshot = m_watcher.result();
    if (snapshot != m_snapshot) {
        m_snapshot = std::move(snapshot);
        Q_EMIT placesChanged();
    }
    if (m_pending)
        lookUp();
}

std::optional<SessionPlace> SessionPlaceTracker::placeOf(qint64 pid) const {
    const auto place = m_snapshot.constFind(pid);
    if (place == m_snapshot.cend())
        return std::nullopt;
    return *place;
}

GoResult SessionPlaceTracker::goTo(qint64 pid) const {
    const QList<ProcessMatch>& matches = m_monitor.matches();
    const auto match = std::find_if(matches.cbegin(), matches.cend(),
                                    [pid](const ProcessMatch& m) { return m.pid == pid; });
    if (match == matches.cend())
        return {GoResult::Outcome::failed, PlaceText::tr("The session has ended")};
    return m_go({match->pid, match->cwd}, placeOf(pid));
}

} // namespace brenvik
