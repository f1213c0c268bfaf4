#include "preferences/ActivationPolicy.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWindow>
#include <QtGui/qguiapplication_platform.h>
#include <array>
#include <cstdlib>
#include <xcb/xcb.h>

namespace brenvik {

namespace {

xcb_atom_t internAtom(xcb_connection_t* connection, const char* name) {
    const xcb_intern_atom_cookie_t cookie =
        xcb_intern_atom(connection, 0, static_cast<uint16_t>(qstrlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return atom;
}

QList<xcb_atom_t> atomListProperty(xcb_connection_t* connection, xcb_window_t window,
                                   xcb_atom_t property) {
    QList<xcb_atom_t> atoms;
    const xcb_get_property_cookie_t cookie =
        xcb_get_property(connection, 0, window, property, XCB_ATOM_ATOM, 0, 4096);
    xcb_get_property_reply_t* reply = xcb_get_property_reply(connection, cookie, nullptr);
    if (reply && reply->format == 32 && reply->type == XCB_ATOM_ATOM) {
        const auto* data = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply));
        const int count = xcb_get_property_value_length(reply) / int(sizeof(xcb_atom_t));
        atoms = QList<xcb_atom_t>(data, data + count);
    }
    std::free(reply);
    return atoms;
}

bool isManagedTopLevel(const QWindow* window) {
    const Qt::WindowType type = window->type();
    return window->isTopLevel() && type != Qt::Popup && type != Qt::ToolTip &&
           type != Qt::Desktop && type != Qt::ForeignWindow;
}

} // namespace

struct TaskbarActivationPolicy::X11 {
    xcb_connection_t* connection = nullptr;
    xcb_window_t root = 0;
    xcb_atom_t netSupported = XCB_ATOM_NONE;
    xcb_atom_t wmState = XCB_ATOM_NONE;
    xcb_atom_t skipTaskbar = XCB_ATOM_NONE;
    xcb_atom_t skipPager = XCB_ATOM_NONE;

    [[nodiscard]] bool windowManagerHonoursSkipHints() const {
        return atomListProperty(connection, root, netSupported).contains(skipTaskbar);
    }

    // Before the window is mapped the window manager reads the property itself.
    void setOnUnmapped(xcb_window_t window, bool skip) const {
        QList<xcb_atom_t> atoms = atomListProperty(connection, window, wmState);
        atoms.removeAll(skipTaskbar);
        atoms.removeAll(skipPager);
        if (skip)
            atoms << skipTaskbar << skipPager;
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, wmState, XCB_ATOM_ATOM, 32,
                            uint32_t(atoms.size()), atoms.constData());
    }

    // Once mapped, only the window manager changes it, on our request.
    void requestOnMapped(xcb_window_t window, bool skip) const {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = wmState;
        event.data.data32[0] = skip ? 1 : 0; // _NET_WM_STATE_ADD / _REMOVE
        event.data.data32[1] = skipTaskbar;
        event.data.data32[2] = skipPager;
        event.data.data32[3] = 1; // source: an application
        xcb_send_event(connection, 0, root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
    }
};

TaskbarActivationPolicy::TaskbarActivationPolicy(QObject* parent)
    : QObject(parent) {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection())
        return;
    m_x11 = std::make_unique<X11>();
    m_x11->connection = x11->connection();
    const xcb_setup_t* setup = xcb_get_setup(m_x11->connection);
    m_x11->root = xcb_setup_roots_iterator(setup).data->root;
    m_x11->netSupported = internAtom(m_x11->connection, "_NET_SUPPORTED");
    m_x11->wmState = internAtom(m_x11->connection, "_NET_WM_STATE");
    m_x11->skipTaskbar = internAtom(m_x11->connection, "_NET_WM_STATE_SKIP_TASKBAR");
    m_x11->skipPager = internAtom(m_x11->connection, "_NET_WM_STATE_SKIP_PAGER");
    // Windows created or shown later get the current policy too.
    qGuiApp->installEventFilter(this);
}

TaskbarActivationPolicy::~TaskbarActivationPolicy() {
    if (m_x11 && qGuiApp)
        qGuiApp->removeEventFilter(this);
}

bool TaskbarActivationPolicy::setPolicy(ActivationPolicyKind policy) {
    // Without X11 every window is in the taskbar already: showing holds.
    if (!m_x11)
        return policy == ActivationPolicyKind::regular;
    if (!m_x11->windowManagerHonoursSkipHints())
        return false;
    m_policy = policy;
    const bool skip = policy == ActivationPolicyKind::accessory;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (!isManagedTopLevel(window) || !window->handle())
            continue;
        const auto id = xcb_window_t(window->winId());
        if (window->isVisible())
            m_x11->requestOnMapped(id, skip);
        else
            m_x11->setOnUnmapped(id, skip);
    }
    xcb_flush(m_x11->connection);
    return true;
}

void TaskbarActivationPolicy::activate() {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (!isManagedTopLevel(window) || !window->isVisible())
            continue;
        window->raise();
        window->requestActivate();
    }
}

bool TaskbarActivationPolicy::eventFilter(QObject* watched, QEvent* event) {
    if (m_policy != ActivationPolicyKind::accessory || !watched->isWindowType())
        return false;
    const bool created = event->type() == QEvent::PlatformSurface &&
                         static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
                             QPlatformSurfaceEvent::SurfaceCreated;
    // Show arrives before the window is mapped; the window manager drops the
    // state of withdrawn windows, so it is set again on every show.
    if (created || event->type() == QEvent::Show) {
        auto* window = static_cast<QWindow*>(watched);
        if (isManagedTopLevel(window) && window->handle()) {
            m_x11->setOnUnmapped(xcb_window_t(window->winId()), true);
            xcb_flush(m_x11->connection);
        }
    }
    return false;
}

} // namespace brenvik
