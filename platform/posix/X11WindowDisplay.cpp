#include <cstdlib>
#include <cstring>
#include <vector>

#include <xcb/xcb.h>

#include "platform/posix/WindowDisplay.h"

namespace platform {

namespace {

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

class X11WindowDisplay final : public WindowDisplay
{
public:
    explicit X11WindowDisplay(xcb_connection_t *connection)
        : m_connection(connection),
          m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root),
          m_processIdAtom(atom("_NET_WM_PID")),
          m_clientListAtom(atom("_NET_CLIENT_LIST")),
          m_nameAtom(atom("_NET_WM_NAME")),
          m_textAtom(atom("UTF8_STRING"))
    {
    }
    ~X11WindowDisplay() override { xcb_disconnect(m_connection); }

    bool hasWindow(qint64 processId) const override { return windowOf(processId) != XCB_NONE; }
    bool setTitle(qint64 processId, const QString &title) const override;

private:
    xcb_atom_t atom(const char *name) const;
    std::vector<quint32> numbers(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;
    std::vector<xcb_window_t> topLevelWindows() const;
    bool isVisible(xcb_window_t window) const;
    xcb_window_t windowOf(qint64 processId) const;

    xcb_connection_t *const m_connection;
    const xcb_window_t m_root;
    const xcb_atom_t m_processIdAtom, m_clientListAtom, m_nameAtom, m_textAtom;
};

xcb_atom_t X11WindowDisplay::atom(const char *name) const
{
    const auto length = static_cast<quint16>(std::strlen(name));
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, length, name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// A property made of 32-bit numbers; empty where the window has none.
std::vector<quint32> X11WindowDisplay::numbers(xcb_window_t window, xcb_atom_t name,
                                               xcb_atom_t type) const
{
    constexpr quint32 lengthLimit = 1 << 16;
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, window, name, type, 0, lengthLimit),
        nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto *first = static_cast<const quint32 *>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

/// A window manager puts windows into frames and lists them; without one they lie in the root.
std::vector<xcb_window_t> X11WindowDisplay::topLevelWindows() const
{
    std::vector<xcb_window_t> windows = numbers(m_root, m_clientListAtom, XCB_ATOM_WINDOW);
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_root), nullptr));
    if (tree) {
        const xcb_window_t *const first = xcb_query_tree_children(tree.get());
        windows.insert(windows.end(), first, first + tree->children_len);
    }
    return windows;
}

bool X11WindowDisplay::isVisible(xcb_window_t window) const
{
    const Reply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

/// XCB_NONE if the process has no visible window.
xcb_window_t X11WindowDisplay::windowOf(qint64 processId) const
{
    for (const xcb_window_t window : topLevelWindows()) {
        const auto owner = numbers(window, m_processIdAtom, XCB_ATOM_CARDINAL);
        if (!owner.empty() && owner.front() == processId && isVisible(window))
            return window;
    }
    return XCB_NONE;
}

bool X11WindowDisplay::setTitle(qint64 processId, const QString &title) const
{
    const xcb_window_t window = windowOf(processId);
    if (window == XCB_NONE)
        return false;
    const QByteArray text = title.toUtf8();
    const Reply<xcb_generic_error_t> failure(xcb_request_check(
        m_connection, xcb_change_property_checked(
                          m_connection, XCB_PROP_MODE_REPLACE, window, m_nameAtom, m_textAtom, 8,
                          static_cast<quint32>(text.size()), text.constData())));
    return !failure;
}

} // namespace

std::unique_ptr<WindowDisplay> WindowDisplay::open()
{
    xcb_connection_t *const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) == 0)
        return std::make_unique<X11WindowDisplay>(connection);
    xcb_disconnect(connection);
    return nullptr;
}

} // namespace platform
