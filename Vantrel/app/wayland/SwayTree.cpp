#include "Vantrel/app/wayland/SwayTree.h"

#include <nlohmann/json.hpp>

namespace vantrel::sway {
namespace {

// sway's trees are a few levels deep (outputs, workspaces, nested containers); a deeper document is not
// one of them, and the limit keeps a hostile one from exhausting the stack.
constexpr int maximumDepth = 64;

std::string text(const nlohmann::json& node, const char* key)
{
    const auto found = node.find(key);
    return found != node.end() && found->is_string() ? found->get<std::string>() : std::string();
}

const nlohmann::json* findFocused(const nlohmann::json& node, int depth)
{
    if (!node.is_object() || depth > maximumDepth) {
        return nullptr;
    }
    const auto focused = node.find("focused");
    if (focused != node.end() && focused->is_boolean() && focused->get<bool>()) {
        return &node;
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
        const auto list = node.find(children);
        if (list == node.end() || !list->is_array()) {
            continue;
        }
        for (const auto& child : *list) {
            if (const auto* found = findFocused(child, depth + 1)) {
                return found;
            }
        }
    }
    return nullptr;
}

} // namespace

std::optional<FrontmostWindow> focusedWindow(std::string_view treeJson)
{
    const auto tree = nlohmann::json::parse(treeJson, nullptr, false);
    const auto* node = findFocused(tree, 0);
    if (node == nullptr) {
        return std::nullopt;
    }
    const std::string type = text(*node, "type");
    if (type != "con" && type != "floating_con") {
        return std::nullopt;
    }
    FrontmostWindow window;
    window.appId = text(*node, "app_id");
    const auto properties = node->find("window_properties");
    if (window.appId.empty() && properties != node->end() && properties->is_object()) {
        window.appId = text(*properties, "class");
        window.instanceName = text(*properties, "instance");
    }
    const auto pid = node->find("pid");
    if (pid != node->end() && pid->is_number_integer() && pid->get<std::int64_t>() > 0) {
        window.pid = pid->get<std::int64_t>();
    }
    if (window.appId.empty() && !window.pid) {
        return std::nullopt;
    }
    return window;
}

} // namespace vantrel::sway
