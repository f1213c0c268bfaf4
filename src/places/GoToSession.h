#pragma once

#include "places/PlaceEnvironment.h"
#include "places/SessionPlace.h"
#include "places/SessionPlaceFinder.h"

#include <QString>
#include <optional>

namespace brenvik {

struct GoResult {
    enum class Outcome {
        went,     // its window is raised and its pane (if any) selected
        selected, // only its tmux pane: the text says where it is and why no window came up
        failed,   // nothing could be done: the text says why
    };
    Outcome outcome = Outcome::failed;
    QString text; // one line; empty when it went

    friend bool operator==(const GoResult&, const GoResult&) = default;
};

// Takes the user to a session: looks its place up afresh (tmux panes move),
// selects its tmux window and pane, shows its session in the terminal that
// showed it before (`remembered`, an earlier lookup) or in the tmux client
// that runs this program, and raises that terminal's window. Never throws.
[[nodiscard]] GoResult goToSession(const SessionQuery& query, const PlaceEnvironment& environment,
                                   const std::optional<SessionPlace>& remembered = std::nullopt);

} // namespace brenvik
