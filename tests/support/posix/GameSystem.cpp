#include "tests/support/GameSystem.h"

#include <csignal>
#include <unistd.h>

#include <QScopedPointer>

#include <xcb/xcb.h>

template <typename T>
using Reply = QScopedPointer<T, QScopedPointerPodDeleter>;

static xcb_connection_t *display = nullptr;
static xcb_window_t window = XCB_NONE;

static xcb_atom_t atom(const QByteArray &name)
{
    const auto request = xcb_intern_atom(display, 0, quint16(name.size()), name);
    return Reply<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(display, request, nullptr))->atom;
}

void GameSystem::openWindow()
{
    display = xcb_connect(nullptr, nullptr);
    window = xcb_generate_id(display);
    const pid_t id = getpid();
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(display)).data;
    xcb_create_window(display, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 9, 9, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    xcb_change_property(display, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_PID"),
                        XCB_ATOM_CARDINAL, 32, 1, &id);
    xcb_map_window(display, window);
    xcb_flush(display);
}

QString GameSystem::windowTitle()
{
    const auto request =
        xcb_get_property(display, 0, window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 0, 99);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(display, request, nullptr));
    return QString::fromUtf8(static_cast<char *>(xcb_get_property_value(reply.data())),
                             xcb_get_property_value_length(reply.data()));
}

void GameSystem::crash()
{
    kill(getpid(), SIGKILL);
}
