#include "places/SessionPlace.h"

namespace brenvik {

QString placeText(const SessionPlace& place) {
    QString text = place.terminal;
    if (place.tmux) {
        if (!text.isEmpty())
            text += u", ";
        text += u"tmux " + place.tmux->session + u':' + QString::number(place.tmux->window) + u'.' +
                QString::number(place.tmux->pane);
    }
    return text;
}

} // namespace brenvik
