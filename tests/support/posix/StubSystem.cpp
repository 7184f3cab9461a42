#include "tests/support/StubSystem.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include <xcb/xcb.h>

namespace StubSystem {

static xcb_connection_t *display = nullptr;
static xcb_window_t window = XCB_NONE;

static xcb_atom_t atom(const char *name)
{
    const auto length = static_cast<quint16>(std::strlen(name));
    auto *reply =
        xcb_intern_atom_reply(display, xcb_intern_atom(display, 0, length, name), nullptr);
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
}

bool openWindow()
{
    display = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(display))
        return false;
    window = xcb_generate_id(display);
    const quint32 id = static_cast<quint32>(getpid());
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(display)).data;
    xcb_create_window(display, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 9, 9, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    xcb_change_property(display, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_PID"),
                        XCB_ATOM_CARDINAL, 32, 1, &id);
    xcb_map_window(display, window);
    return xcb_flush(display) > 0;
}

QString windowTitle()
{
    const auto request =
        xcb_get_property(display, 0, window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 0, 99);
    auto *reply = xcb_get_property_reply(display, request, nullptr);
    const QString title =
        QString::fromUtf8(static_cast<const char *>(xcb_get_property_value(reply)),
                          xcb_get_property_value_length(reply));
    std::free(reply);
    return title;
}

void crash()
{
    kill(getpid(), SIGKILL);
    std::abort();
}

} // namespace StubSystem
