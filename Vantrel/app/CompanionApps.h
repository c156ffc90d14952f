#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// The applications in front of which the panel shows itself: Codex, ChatGPT and Vantrel itself under its
// short and its full name. Compared exactly, letter case included.
inline constexpr std::array<std::string_view, 4> companionAppNames{"Codex", "ChatGPT", "Vantrel",
                                                                   "Vantrel Solvane"};

// What the desktop tells about the window in front. X11 has no single "application name": a window
// carries a class (WM_CLASS) and belongs to a process, and either may be the name the user knows (an
// Electron application's class is often just "Electron").
struct FrontmostWindow {
    std::string windowClass;
    std::string processName;
    bool ownProcess = false; // a window of this very program
};

// The name under which a window of this program counts.
inline constexpr std::string_view ownAppName = "Vantrel";

bool isCompanionName(std::string_view name);

// Whether the window in front belongs to a companion application: its class or its process name is one of
// the names, or it is one of our own windows. No window in front is never a companion.
bool isCompanion(const std::optional<FrontmostWindow>& frontmost);

} // namespace vantrel
