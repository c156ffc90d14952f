// Clicks as a mouse would, through the wlroots virtual-pointer protocol: a headless compositor has no
// input devices of its own.
//
//   virtual_pointer X Y WIDTH HEIGHT [left|right]
//
// Moves the pointer to (X, Y) of the WIDTH×HEIGHT output and clicks a button there, the left one unless
// told.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <linux/input-event-codes.h>
#include <string>
#include <thread>
#include <wayland-client.h>
#include <wlr-virtual-pointer-unstable-v1-client.h>

namespace {

zwlr_virtual_pointer_manager_v1* manager = nullptr;

void announce(void* /*data*/, wl_registry* registry, std::uint32_t name, const char* interface,
              std::uint32_t /*version*/)
{
    if (std::strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0) {
        manager = static_cast<zwlr_virtual_pointer_manager_v1*>(
            wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1));
    }
}

void withdraw(void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/)
{}

std::uint32_t now()
{
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                          std::chrono::steady_clock::now().time_since_epoch())
                                          .count());
}

} // namespace

int main(int argc, char** argv)
{
    const bool right = argc == 6 && std::strcmp(argv[5], "right") == 0;
    if ((argc != 5 && argc != 6) || (argc == 6 && !right && std::strcmp(argv[5], "left") != 0)) {
        static_cast<void>(std::fputs("usage: virtual_pointer X Y WIDTH HEIGHT [left|right]\n", stderr));
        return 2;
    }
    const auto number = [&argv](int index) { return static_cast<std::uint32_t>(std::stoul(argv[index])); };
    wl_display* display = wl_display_connect(nullptr);
    if (display == nullptr) {
        static_cast<void>(std::fputs("virtual_pointer: no Wayland display\n", stderr));
        return 1;
    }
    static const wl_registry_listener listener{&announce, &withdraw};
    wl_registry* registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, nullptr);
    wl_display_roundtrip(display);
    if (manager == nullptr) {
        static_cast<void>(std::fputs("virtual_pointer: the compositor offers no virtual pointer\n", stderr));
        return 1;
    }
    zwlr_virtual_pointer_v1* pointer =
        zwlr_virtual_pointer_manager_v1_create_virtual_pointer(manager, nullptr);
    zwlr_virtual_pointer_v1_motion_absolute(pointer, now(), number(1), number(2), number(3), number(4));
    zwlr_virtual_pointer_v1_frame(pointer);
    wl_display_roundtrip(display);
    // The client under the pointer learns that it entered before the button goes down, as with a mouse.
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    for (const auto state : {WL_POINTER_BUTTON_STATE_PRESSED, WL_POINTER_BUTTON_STATE_RELEASED}) {
        zwlr_virtual_pointer_v1_button(pointer, now(), right ? BTN_RIGHT : BTN_LEFT, state);
        zwlr_virtual_pointer_v1_frame(pointer);
        wl_display_roundtrip(display);
    }
    zwlr_virtual_pointer_v1_destroy(pointer);
    zwlr_virtual_pointer_manager_v1_destroy(manager);
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return 0;
}
