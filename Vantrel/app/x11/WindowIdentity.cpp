#include "Vantrel/app/x11/WindowIdentity.h"

namespace vantrel {

WmClass parseWmClass(std::string_view property)
{
    const auto endOfInstance = property.find('\0');
    if (endOfInstance == std::string_view::npos) {
        return {std::string(property), {}};
    }
    const std::string_view rest = property.substr(endOfInstance + 1);
    return {std::string(property.substr(0, endOfInstance)), std::string(rest.substr(0, rest.find('\0')))};
}

} // namespace vantrel
