#include "places/TerminalWindows.h"

#include <QCoreApplication>

namespace brenvik {

namespace {

struct PlaceText {
    Q_DECLARE_TR_FUNCTIONS(PlaceText)
};

// "~", "/" or one letter name no project: they match almost any title.
constexpr qsizetype kShortestHint = 2;

bool namesAny(const QString& title, const QStringList& hints) {
    for (const QString& hint : hints) {
        if (hint.size() >= kShortestHint && title.contains(hint, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

std::optional<WindowChoice> chooseWindow(const QList<ClientWindow>& windows, qint64 pid,
                                         const QStringList& hints) {
    const ClientWindow* best = nullptr;
    bool bestNamed = false;
    int owned = 0;
    for (const ClientWindow& window : windows) {
        if (pid <= 0 || window.pid != pid)
            continue;
        ++owned;
        const bool named = namesAny(window.title, hints);
        if (!best || (named && !bestNamed) ||
            (named == bestNamed && window.stackingOrder > best->stackingOrder)) {
            best = &window;
            bestNamed = named;
        }
    }
    if (!best)
        return std::nullopt;
    return WindowChoice{best->id, owned > 1};
}

QString windowsUnavailableReason(const std::function<QString(const char*)>& variable) {
    const QString platform = variable("QT_QPA_PLATFORM");
    if (platform == u"offscreen" || platform == u"minimal")
        return PlaceText::tr("there is no screen (QT_QPA_PLATFORM=%1)").arg(platform);
    if (!variable("WAYLAND_DISPLAY").isEmpty() ||
        variable("XDG_SESSION_TYPE").compare(u"wayland", Qt::CaseInsensitive) == 0)
        return PlaceText::tr("a Wayland desktop lets no program raise another's window");
    if (variable("DISPLAY").isEmpty())
        return PlaceText::tr("there is no X server (DISPLAY is not set)");
    return {};
}

} // namespace brenvik
