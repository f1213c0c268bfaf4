#pragma once

#include "sessionlog/LogLineScanner.h"
#include "sessionlog/SessionLogState.h"

#include <QByteArray>
#include <QList>

namespace brenvik {

// Follows a session's turns line by line, in file order. Internal to
// src/sessionlog; SessionLogReader feeds it.
//
// Codex releases before early 2026 write no task_started or task_complete. In
// their logs the user's prompt opens a turn, and the turn is over when a model
// response that answered (an agent message, no tool call after it) completes
// with no tool call left open: the token_count written as that response
// completes. A log with its session_meta and nothing of a turn tells that the
// session has had none yet.
class SessionTurnTracker {
public:
    // `firstLine`: the line starts at offset 0, where the session's own
    // session_meta is. A session_meta anywhere else starts copied history.
    void apply(const LogLineEvent& event, bool firstLine);

    // The lines before the reader's starting point are known to hold turn
    // events, so a copied-history marker makes the session idle, not unknown.
    void assumeTurnsWritten() { m_turnsWritten = true; }
    // The lines before the reader's starting point were not looked at: their
    // session_meta cannot tell that no turn has started.
    void assumeLinesUnseen() { m_linesUnseen = true; }

    [[nodiscard]] const SessionLogState& state() const { return m_state; }

private:
    void setPhase(TurnPhase phase, QByteArrayView timestamp);
    void openTurn(QByteArrayView timestamp);
    void closeTurn(QByteArrayView timestamp);
    // Work this log shows but cannot place in a turn.
    [[nodiscard]] bool outsideAnyTurn() const { return !m_turnsWritten && !m_promptsWritten; }

    SessionLogState m_state;
    bool m_turnsWritten = false;   // this log writes task_started and its closers
    bool m_promptsWritten = false; // an older log, whose prompts mark its turns
    bool m_linesUnseen = false;
    bool m_turnOpen = false;
    bool m_answered = false; // an older log's turn: the agent spoke since the last tool call
    QList<QByteArray> m_pendingCalls; // call_ids of the open turn without output
};

// The first non-blank line of a message, trimmed, at most 120 characters.
[[nodiscard]] QString firstMessageLine(const QString& message);

} // namespace brenvik
