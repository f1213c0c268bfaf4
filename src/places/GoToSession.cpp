#include "places/GoToSession.h"

#include <QCoreApplication>
#include <algorithm>

namespace brenvik {

namespace {

struct PlaceText {
    Q_DECLARE_TR_FUNCTIONS(PlaceText)
};

// The client that runs in the terminal whose window is `window`.
std::optional<TmuxClientRow> clientInWindow(const QList<TmuxClientRow>& clients, quint32 window,
                                            const QList<ClientWindow>& windows,
                                            const PlaceEnvironment& environment) {
    const auto owner = std::find_if(windows.cbegin(), windows.cend(),
                                    [&](const ClientWindow& w) { return w.id == window; });
    if (owner == windows.cend() || owner->pid <= 0)
        return std::nullopt;
    std::optional<TmuxClientRow> latest;
    for (const TmuxClientRow& client : clients) {
        const QList<AncestorProcess> ancestry = ancestryOf(client.pid, environment.process);
        const bool inside =
            std::any_of(ancestry.cbegin(), ancestry.cend(),
                        [&](const AncestorProcess& p) { return p.pid == owner->pid; });
        if (inside && (!latest || client.activity > latest->activity))
            latest = client;
    }
    return latest;
}

GoResult failed(QString text) {
    return {GoResult::Outcome::failed, std::move(text)};
}

} // namespace

GoResult goToSession(const SessionQuery& query, const PlaceEnvironment& environment,
                     const std::optional<SessionPlace>& remembered) {
    LocatedSession located = locateSession(query, environment);
    if (!located.lookup.place)
        return failed(PlaceText::tr("Cannot go to the session: %1").arg(located.lookup.reason));
    SessionPlace place = *located.lookup.place;

    if (place.tmux) {
        if (!located.server->select(*place.tmux))
            return failed(PlaceText::tr("tmux could not select the pane of the session in %1")
                              .arg(placeText(place)));
        if (!located.client) {
            // Show it where it was shown before, else in the client whose key
            // binding runs this; with neither, it waits for the next attach.
            std::optional<TmuxClientRow> client;
            if (remembered && remembered->window) {
                QString ignored;
                const auto windows =
                    environment.windows ? environment.windows(&ignored) : std::nullopt;
                if (windows)
                    client =
                        clientInWindow(located.clients, *remembered->window, *windows, environment);
            }
            const bool invokedThere = environment.invokingTmuxSocket == located.server->socket();
            if ((client || invokedThere) &&
                located.server->switchClient(client ? client->tty : QString(), *place.tmux)) {
                located = locateSession(query, environment);
                place = located.lookup.place.value_or(place);
            }
            if (!located.client && !invokedThere)
                return {GoResult::Outcome::selected,
                        PlaceText::tr("In %1, which no terminal shows: its pane is selected for "
                                      "the next attach")
                            .arg(placeText(place))};
        }
    }

    QString whyNot = located.windowsReason;
    if (place.window && environment.activate && environment.activate(*place.window, &whyNot))
        return {GoResult::Outcome::went, {}};
    if (whyNot.isEmpty())
        whyNot = PlaceText::tr("no window of its terminal was found");
    if (place.tmux)
        return {GoResult::Outcome::selected,
                PlaceText::tr("In %1: its pane is selected; the window was not raised: %2")
                    .arg(placeText(place), whyNot)};
    return failed(
        PlaceText::tr("In %1: the window was not raised: %2").arg(placeText(place), whyNot));
}

} // namespace brenvik
