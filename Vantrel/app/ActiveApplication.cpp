#include "Vantrel/app/ActiveApplication.h"

namespace vantrel {

std::optional<FrontmostWindow> frontmostWindowOf(const std::optional<ActiveApplication>& active,
                                                 std::int64_t ownPid)
{
    if (!active)
        return std::nullopt;
    FrontmostWindow window;
    window.pid = active->pid;
    window.ownProcess = active->pid == ownPid;
    window.localizedName = active->localizedName.value_or(std::string());
    return window;
}

} // namespace vantrel
