#include "places/X11Desktop.h"

#include <QCoreApplication>
#include <cstdlib>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

namespace brenvik {

namespace {

struct PlaceText {
    Q_DECLARE_TR_FUNCTIONS(PlaceText)
};

// A window on every desktop.
constexpr uint32_t kAllDesktops = 0xFFFFFFFF;

template <typename Reply> struct FreeReply {
    void operator()(Reply* reply) const { std::free(reply); }
};
template <typename Reply> using ReplyPointer = std::unique_ptr<Reply, FreeReply<Reply>>;

} // namespace

struct X11Desktop::Connection {
    xcb_connection_t* connection = nullptr;
    int screen = 0;
    xcb_ewmh_connection_t ewmh{};
    bool atomsReady = false;

    ~Connection() {
        if (atomsReady)
            xcb_ewmh_connection_wipe(&ewmh);
        if (connection)
            xcb_disconnect(connection);
    }

    // ICCCM's WM_NAME, for windows that set no _NET_WM_NAME.
    [[nodiscard]] QString legacyTitle(xcb_window_t window) const {
        const ReplyPointer<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection,
                                   xcb_get_property(connection, 0, window, XCB_ATOM_WM_NAME,
                                                    XCB_GET_PROPERTY_TYPE_ANY, 0, 1024),
                                   nullptr));
        if (!reply || reply->format != 8)
            return {};
        return QString::fromLocal8Bit(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                      xcb_get_property_value_length(reply.get()));
    }
};

X11Desktop::X11Desktop(std::unique_ptr<Connection> connection)
    : m_connection(std::move(connection)) {}

X11Desktop::~X11Desktop() = default;

std::unique_ptr<X11Desktop> X11Desktop::open(QString* reason) {
    auto connection = std::make_unique<Connection>();
    connection->connection = xcb_connect(nullptr, &connection->screen);
    if (xcb_connection_has_error(connection->connection)) {
        *reason =
            PlaceText::tr("cannot connect to the X server %1").arg(qEnvironmentVariable("DISPLAY"));
        return nullptr;
    }
    xcb_intern_atom_cookie_t* cookies =
        xcb_ewmh_init_atoms(connection->connection, &connection->ewmh);
    connection->atomsReady =
        cookies && xcb_ewmh_init_atoms_replies(&connection->ewmh, cookies, nullptr);
    if (!connection->atomsReady) {
        *reason = PlaceText::tr("the X server's EWMH atoms cannot be read");
        return nullptr;
    }
    xcb_window_t check = XCB_WINDOW_NONE;
    if (!xcb_ewmh_get_supporting_wm_check_reply(
            &connection->ewmh,
            xcb_ewmh_get_supporting_wm_check(&connection->ewmh,
                                             connection->ewmh.screens[connection->screen]->root),
            &check, nullptr) ||
        check == XCB_WINDOW_NONE) {
        *reason = PlaceText::tr("no EWMH window manager runs on the X server");
        return nullptr;
    }
    return std::unique_ptr<X11Desktop>(new X11Desktop(std::move(connection)));
}

QList<ClientWindow> X11Desktop::clientWindows() const {
    xcb_ewmh_connection_t* ewmh = &m_connection->ewmh;
    const int screen = m_connection->screen;
    xcb_ewmh_get_windows_reply_t list{};
    if (!xcb_ewmh_get_client_list_stacking_reply(
            ewmh, xcb_ewmh_get_client_list_stacking(ewmh, screen), &list, nullptr) &&
        !xcb_ewmh_get_client_list_reply(ewmh, xcb_ewmh_get_client_list(ewmh, screen), &list,
                                        nullptr))
        return {};

    // Every request first, then the replies: one round trip, not two per window.
    QList<std::pair<xcb_get_property_cookie_t, xcb_get_property_cookie_t>> cookies;
    for (uint32_t i = 0; i < list.windows_len; ++i)
        cookies.append({xcb_ewmh_get_wm_pid(ewmh, list.windows[i]),
                        xcb_ewmh_get_wm_name(ewmh, list.windows[i])});
    QList<ClientWindow> windows;
    for (uint32_t i = 0; i < list.windows_len; ++i) {
        ClientWindow window{
            .id = list.windows[i], .pid = 0, .title = {}, .stackingOrder = static_cast<int>(i)};
        uint32_t pid = 0;
        if (xcb_ewmh_get_wm_pid_reply(ewmh, cookies[i].first, &pid, nullptr))
            window.pid = pid;
        xcb_ewmh_get_utf8_strings_reply_t name{};
        if (xcb_ewmh_get_wm_name_reply(ewmh, cookies[i].second, &name, nullptr)) {
            window.title = QString::fromUtf8(name.strings, name.strings_len);
            xcb_ewmh_get_utf8_strings_reply_wipe(&name);
        } else {
            window.title = m_connection->legacyTitle(window.id);
        }
        windows << std::move(window);
    }
    xcb_ewmh_get_windows_reply_wipe(&list);
    return windows;
}

bool X11Desktop::activate(quint32 window, QString* reason) const {
    xcb_connection_t* connection = m_connection->connection;
    xcb_ewmh_connection_t* ewmh = &m_connection->ewmh;
    const int screen = m_connection->screen;
    uint32_t desktop = kAllDesktops;
    uint32_t current = kAllDesktops;
    const xcb_get_property_cookie_t desktopCookie = xcb_ewmh_get_wm_desktop(ewmh, window);
    const xcb_get_property_cookie_t currentCookie = xcb_ewmh_get_current_desktop(ewmh, screen);
    xcb_generic_error_t* error = nullptr;
    const bool known = xcb_ewmh_get_wm_desktop_reply(ewmh, desktopCookie, &desktop, &error);
    if (error) {
        std::free(error);
        *reason = PlaceText::tr("its window is gone");
        return false;
    }
    const bool hasCurrent =
        xcb_ewmh_get_current_desktop_reply(ewmh, currentCookie, &current, nullptr);
    if (known && hasCurrent && desktop != kAllDesktops && desktop != current)
        xcb_ewmh_request_change_current_desktop(ewmh, screen, desktop, XCB_CURRENT_TIME);
    // Mapping an iconic window asks the window manager to restore it (ICCCM).
    xcb_map_window(connection, window);
    xcb_ewmh_request_change_active_window(ewmh, screen, window, XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER,
                                          XCB_CURRENT_TIME, XCB_WINDOW_NONE);
    // A round trip, so that the requests are out before the connection closes.
    const ReplyPointer<xcb_get_input_focus_reply_t> sync(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (xcb_connection_has_error(connection)) {
        *reason = PlaceText::tr("the X server closed the connection");
        return false;
    }
    return true;
}

} // namespace brenvik
