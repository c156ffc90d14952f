#pragma once

#include "Vantrel/app/FrontmostWindow.h"

#include <optional>
#include <string_view>

namespace vantrel::sway {

// The focused window in the reply to GET_TREE: its app_id (a native window) or X11 class and instance
// (an XWayland window) and its process. Nothing when the focus is on an empty workspace, when the
// focused window has no identity yet, or when the reply is not a tree.
std::optional<FrontmostWindow> focusedWindow(std::string_view treeJson);

} // namespace vantrel::sway
