#pragma once

#include <QByteArrayView>
#include <QString>

namespace brenvik {

// What one rollout line means to the turn tracker. Internal to src/sessionlog.
// The views point into the scanned line and hold raw JSON string contents,
// escapes not yet resolved (see jsonStringText()).
struct LogLineEvent {
    enum class Kind : quint8 {
        other, // irrelevant, not understood, or not JSON
        sessionMeta,
        turnStarted,
        turnEnded,
        userMessage, // the user's prompt
        agentMessage,
        tokenCount, // usage figures, written as a model response opens and completes
        toolCall,
        toolOutput,
    };
    Kind kind = Kind::other;
    QByteArrayView timestamp;
    QByteArrayView callId;
    QByteArrayView message; // agent_message's message, task_complete's last_agent_message
    bool hasMessage = false;
    QByteArrayView id, cwd, originator, cliVersion; // session_meta
};

// Reads one line without building a document: the walk stops as soon as the
// line's types show it is irrelevant, which is where most lines end. `cut`
// says the line is only the head of a longer one; then the fields read
// before the cut count, the rest is unknown.
[[nodiscard]] LogLineEvent scanLogLine(QByteArrayView line, bool cut = false);

// The text of a raw JSON string, escapes resolved and invalid UTF-8 replaced,
// stopping after about `limit` bytes.
[[nodiscard]] QString jsonStringText(QByteArrayView raw, qsizetype limit = 4096);

} // namespace brenvik
