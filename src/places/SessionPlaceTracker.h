#pragma once

#include "monitor/ProcessMonitoring.h"
#include "places/GoToSession.h"
#include "places/SessionPlaces.h"

#include <QFutureWatcher>
#include <QHash>
#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace brenvik {

// The places of a monitor's sessions, for the tray app: each looked up once,
// when its session first appears, on a worker thread of its own, so that a
// refresh never waits for tmux or the X server. Going there happens on the
// caller's thread, when the user asks.
class SessionPlaceTracker : public QObject {
    Q_OBJECT

public:
    using GoFunction =
        std::function<GoResult(const SessionQuery&, const std::optional<SessionPlace>& remembered)>;

    // Finds and goes with the system's tmux and X server.
    explicit SessionPlaceTracker(CodexProcessMonitor& monitor, QObject* parent = nullptr);
    SessionPlaceTracker(CodexProcessMonitor& monitor, SessionPlaces::Finder finder, GoFunction go,
                        QObject* parent = nullptr);
    ~SessionPlaceTracker() override;

    // Where the session with this root PID runs; none until its lookup has
    // ended, or where none was found.
    [[nodiscard]] std::optional<SessionPlace> placeOf(qint64 pid) const;

    // Takes the user to the session: tmux and the X server answer in
    // milliseconds, and are given 3 s at most.
    [[nodiscard]] GoResult goTo(qint64 pid) const;

    // True once no lookup is in flight or waiting; for tests.
    [[nodiscard]] bool isIdle() const noexcept { return !m_inFlight && !m_pending; }

Q_SIGNALS:
    // A lookup ended and some place changed.
    void placesChanged();

private:
    using Snapshot = QHash<qint64, SessionPlace>;

    void lookUp();
    void onLookedUp();

    CodexProcessMonitor& m_monitor;
    GoFunction m_go;
    std::shared_ptr<SessionPlaces> m_places; // touched by the worker only
    Snapshot m_snapshot;
    // The sessions (root PID, start) of the latest lookup: a refresh that
    // brings none new and ends none costs no lookup at all.
    std::vector<std::pair<qint64, qint64>> m_lookedUp; // not QList: Qt 6.4 may memcmp a null one
    bool m_inFlight = false;
    bool m_pending = false;
    QThreadPool m_pool; // one worker: one lookup at a time
    QFutureWatcher<Snapshot> m_watcher;
};

} // namespace brenvik
