#pragma once

#include "sessionlog/LogLineScanner.h"
#include "sessionlog/SessionLogState.h"

#include <QByteArray>
#include <QList>

namespace brenvik {

// Follows a session's turns line by line, in file order. Internal to
// src/sessionlog; SessionLogReader feeds it.
class SessionTurnTracker {
public:
    // `firstLine`: the line starts at offset 0, where the session's own
    // session_meta is. A session_meta anywhere else starts copied history.
    void apply(const LogLineEvent& event, bool firstLine);

    // The lines before the reader's starting point are known to hold turn
    // events, so a copied-history marker makes the session idle, not unknown.
    void assumeTurnsWritten() { m_turnsWritten = true; }

    [[nodiscard]] const SessionLogState& state() const { return m_state; }

private:
    void setPhase(TurnPhase phase, QByteArrayView timestamp);

    SessionLogState m_state;
    bool m_turnsWritten = false; // this log writes task_started and its closers
    bool m_turnOpen = false;
    QList<QByteArray> m_pendingCalls; // call_ids of the open turn without output
};

// The first non-blank line of a message, trimmed, at most 120 characters.
[[nodiscard]] QString firstMessageLine(const QString& message);

} // namespace brenvik
