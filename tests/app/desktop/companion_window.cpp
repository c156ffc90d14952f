// A stand-in for another application on the test desktop: one plain X window with the WM_CLASS, title and
// process name the test chooses, so the panel can be seen to follow the window in front.
//
//   companion_window --class Codex [--instance codex] [--process Codex] [--title T] [--geometry X,Y,W,H]
//   companion_window --app-id codex [--process P] [--title T] [--geometry X,Y,W,H]
//   either of them [--shell FIFO]
//
// Prints the window's id in decimal once it is mapped, then runs until killed. With --app-id the window is
// a native Wayland toplevel of that app_id instead, and what it prints is its process id. With --shell it
// is a terminal as far as processes go: a shell on a terminal of its own (leading its session) runs each
// line written to FIFO, and ends with the window.

#include "companion_wayland.h"
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pty.h>
#include <string>
#include <sys/prctl.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

struct Options {
    std::string appId;
    std::string windowClass = "Companion";
    std::string instance = "companion";
    std::string process;
    std::string title = "companion";
    std::string shellCommands;
    std::int16_t x = 40;
    std::int16_t y = 80;
    std::uint16_t width = 420;
    std::uint16_t height = 300;
};

bool parse(int argc, char** argv, Options& options)
{
    for (int index = 1; index + 1 < argc; index += 2) {
        const std::string name = argv[index];
        const std::string value = argv[index + 1];
        if (name == "--app-id") {
            options.appId = value;
        } else if (name == "--class") {
            options.windowClass = value;
        } else if (name == "--instance") {
            options.instance = value;
        } else if (name == "--process") {
            options.process = value;
        } else if (name == "--shell") {
            options.shellCommands = value;
        } else if (name == "--title") {
            options.title = value;
        } else if (name == "--geometry") {
            int x = 0;
            int y = 0;
            int width = 0;
            int height = 0;
            if (std::sscanf(value.c_str(), "%d,%d,%d,%d", &x, &y, &width, &height) != 4) {
                return false;
            }
            options.x = static_cast<std::int16_t>(x);
            options.y = static_cast<std::int16_t>(y);
            options.width = static_cast<std::uint16_t>(width);
            options.height = static_cast<std::uint16_t>(height);
        } else {
            return false;
        }
    }
    return argc % 2 == 1;
}

xcb_atom_t atom(xcb_connection_t* connection, const char* name)
{
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr);
    const xcb_atom_t result = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return result;
}

void setText(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
             const std::string& text)
{
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

// A shell on a new pseudo-terminal, as a terminal starts one for each tab; its output goes nowhere, so
// nobody needs to read the terminal's side.
bool startShell(const std::string& commands)
{
    int terminal = -1;
    const pid_t shell = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (shell < 0) {
        return false;
    }
    if (shell == 0) {
        execl("/bin/sh", "sh", "-c",
              "exec >/dev/null 2>&1; while :; do while IFS= read -r line; do eval \"$line\"; done < \"$0\"; "
              "done",
              commands.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!parse(argc, argv, options)) {
        static_cast<void>(std::fputs("usage: companion_window (--class C [--instance I] | --app-id A) "
                                     "[--process P] [--title T] [--geometry X,Y,W,H] [--shell FIFO]\n",
                                     stderr));
        return 2;
    }
    if (!options.process.empty()) {
        // What /proc/PID/comm reads, and so the process name the panel looks at.
        prctl(PR_SET_NAME, options.process.c_str(), 0, 0, 0);
    }
    if (!options.shellCommands.empty() && !startShell(options.shellCommands)) {
        static_cast<void>(std::fputs("companion_window: no terminal for the shell\n", stderr));
        return 1;
    }
    if (!options.appId.empty()) {
        return runWaylandWindow(options.appId, options.title, options.width, options.height);
    }
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        static_cast<void>(std::fputs("companion_window: no X display\n", stderr));
        return 1;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int index = 0; index < screenNumber; ++index) {
        xcb_screen_next(&screens);
    }
    const xcb_screen_t* screen = screens.data;

    const xcb_window_t window = xcb_generate_id(connection);
    const std::array<std::uint32_t, 2> values{0x3a6ea5,
                                              XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, options.x, options.y,
                      options.width, options.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());

    std::string wmClass = options.instance;
    wmClass.push_back('\0');
    wmClass += options.windowClass;
    wmClass.push_back('\0');
    setText(connection, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, wmClass);
    setText(connection, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, options.title);
    setText(connection, window, atom(connection, "_NET_WM_NAME"), atom(connection, "UTF8_STRING"),
            options.title);
    const auto pid = static_cast<std::uint32_t>(getpid());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(connection, "_NET_WM_PID"),
                        XCB_ATOM_CARDINAL, 32, 1, &pid);
    // Ask for the position given: window managers otherwise place new windows as they like.
    const std::array<std::uint32_t, 18> sizeHints{1U | 2U | 4U | 8U}; // USPosition, USSize, PPosition, PSize
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, sizeHints.size(), sizeHints.data());
    xcb_map_window(connection, window);
    xcb_flush(connection);

    bool announced = false;
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
        const auto type = event->response_type & 0x7F;
        std::free(event);
        if (type == XCB_MAP_NOTIFY && !announced) {
            static_cast<void>(std::printf("%u\n", window));
            static_cast<void>(std::fflush(stdout));
            announced = true;
        }
    }
    return 0;
}
