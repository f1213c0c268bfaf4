#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

namespace brenvik {

// The first line of a rollout log: who wrote it and for which project.
struct SessionMeta {
    QString id;
    QString cwd;
    QString originator; // e.g. "codex-tui", "codex_exec"
    QString cliVersion;

    friend bool operator==(const SessionMeta&, const SessionMeta&) = default;
};

enum class TurnPhase {
    unknown,            // nothing understood decides: unreadable, junk, gone, cannot tell
    notStarted,         // no log yet: Codex writes it the moment its first turn starts
    idle,               // no turn open
    running,            // a turn is open
    awaitingToolOutput, // the open turn has a tool call without output yet
};

// What a session log says about its session right now.
struct SessionLogState {
    std::optional<SessionMeta> meta;
    TurnPhase phase = TurnPhase::unknown;
    std::optional<QDateTime> phaseSince; // UTC, of the line that set the phase
    // First line of the agent's last message in the latest turn, at most 120 characters.
    std::optional<QString> lastAgentMessageLine;

    friend bool operator==(const SessionLogState&, const SessionLogState&) = default;
};

} // namespace brenvik
