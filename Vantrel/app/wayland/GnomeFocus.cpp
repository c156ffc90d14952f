#include "Vantrel/app/wayland/GnomeFocus.h"

#include <array>
#include <string_view>

namespace vantrel::gnome {
namespace {

// What the bus daemon answers a call to a name nobody owns.
constexpr std::array<std::string_view, 2> noOwnerErrors{"org.freedesktop.DBus.Error.ServiceUnknown",
                                                        "org.freedesktop.DBus.Error.NameHasNoOwner"};

FocusAnswer tellsNothing(MissingSource missing)
{
    return {{FrontmostReach::State::tellsNothing, missing, {}}, std::nullopt};
}

FocusAnswer tells(std::optional<FrontmostWindow> window)
{
    return {{FrontmostReach::State::tells, MissingSource::gnomeExtension, {}}, std::move(window)};
}

// A known key: its value where it holds one of its type; `wellTyped` false where it holds another type.
template <typename Value> struct Field {
    bool wellTyped = true;
    std::optional<Value> value;
};

template <typename Value> Field<Value> field(const FocusDescription& description, const char* key)
{
    const auto found = description.find(key);
    if (found == description.end()) {
        return {};
    }
    const auto* value = std::get_if<Value>(&found->second);
    return value != nullptr ? Field<Value>{true, *value} : Field<Value>{false, std::nullopt};
}

} // namespace

FocusAnswer readFocusMessage(const FocusMessage& message)
{
    if (!message.errorName.empty()) {
        for (const std::string_view noOwner : noOwnerErrors) {
            if (message.errorName == noOwner) {
                return tellsNothing(MissingSource::gnomeExtension);
            }
        }
        return tellsNothing(MissingSource::faultyGnomeExtension);
    }
    if (!message.description) {
        return tellsNothing(MissingSource::faultyGnomeExtension);
    }
    const FocusDescription& description = *message.description;
    if (description.empty()) {
        return tells(std::nullopt);
    }
    const auto clientType = field<std::string>(description, "client-type");
    const auto wmClass = field<std::string>(description, "wm-class");
    const auto instance = field<std::string>(description, "wm-class-instance");
    const auto pid = field<std::uint32_t>(description, "pid");
    const bool x11 = clientType.value == "x11";
    if (!wmClass.wellTyped || !instance.wellTyped || !pid.wellTyped ||
        (!x11 && clientType.value != "wayland")) {
        return tellsNothing(MissingSource::faultyGnomeExtension);
    }
    FrontmostWindow window;
    window.appId = wmClass.value.value_or("");
    if (x11) {
        window.instanceName = instance.value.value_or("");
    }
    if (pid.value.value_or(0) > 0) {
        window.pid = *pid.value;
    }
    if (window.appId.empty() && !window.pid) {
        return tells(std::nullopt);
    }
    return tells(std::move(window));
}

} // namespace vantrel::gnome
