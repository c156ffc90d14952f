#pragma once

#include <string>
#include <string_view>

namespace vantrel {

// X11's WM_CLASS property holds "instance\0class\0".
struct WmClass {
    std::string instance;
    std::string windowClass;
};

// Either part is empty when the property lacks it.
WmClass parseWmClass(std::string_view property);

} // namespace vantrel
