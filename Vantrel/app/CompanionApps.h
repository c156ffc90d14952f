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

// The name under which a window of this program counts, and the one under which a window running the
// Codex command-line program counts.
inline constexpr std::string_view ownAppName = "Vantrel";
inline constexpr std::string_view codexAppName = "Codex";

// The application behind the window in front, as far as it could be identified.
struct FrontmostApplication {
    // The name users see: its desktop entry's Name in their language, or the desktop's own name for it.
    std::optional<std::string> name;
    // Only where no name is known: the app_id or window class, and the name of the window's process.
    std::string appId;
    std::string processName;
    bool ownProcess = false;
    bool runsCodexCli = false; // the window's process has a descendant running the Codex CLI

    friend bool operator==(const FrontmostApplication&, const FrontmostApplication&) = default;
};

bool isCompanionName(std::string_view name);

// Whether the application in front is a companion: one of our own windows, a window running the Codex
// CLI, or an application whose name is listed. Without a known name its app_id or class and its process
// name stand in. No window in front is never a companion.
bool isCompanion(const std::optional<FrontmostApplication>& frontmost);

} // namespace vantrel
