#pragma once

#include <string>

// The native Wayland form of the companion window: a Qt window whose xdg_toplevel app_id is the given id.
// Prints the process id once the compositor has shown the window, then runs until killed.
int runWaylandWindow(const std::string& appId, const std::string& title, int width, int height);
