#include "Vantrel/limits/LimitsDocument.h"

#include "Vantrel/limits/DocumentKeys.h"

#include <algorithm>
#include <span>
#include <vector>

namespace vantrel::limits {
namespace {

using Event = nlohmann::json::parse_event_t;

// What a container is, judged from where it sits. Anything off the read path is an Other container: it
// is kept (its type still counts) but emptied.
enum class Role { Document, Buckets, Bucket, Windows, Window, Other };

struct OpenContainer {
    Role role = Role::Other;
    std::string_view lastKey; // one of the keys:: constants, or empty
};

std::span<const std::string_view> keptKeys(Role role)
{
    switch (role) {
    case Role::Document:
        return keys::document;
    case Role::Bucket:
        return keys::bucket;
    case Role::Window:
        return keys::window;
    default:
        return {};
    }
}

Role childRole(const OpenContainer* parent, bool isObject)
{
    if (parent == nullptr) {
        return isObject ? Role::Document : Role::Other;
    }
    switch (parent->role) {
    case Role::Document:
        return !isObject && parent->lastKey == keys::buckets ? Role::Buckets : Role::Other;
    case Role::Buckets:
        return isObject ? Role::Bucket : Role::Other;
    case Role::Bucket:
        return !isObject && parent->lastKey == keys::windows ? Role::Windows : Role::Other;
    case Role::Windows:
        return isObject ? Role::Window : Role::Other;
    default:
        return Role::Other;
    }
}

// Follows the parse through the parser's callback. `depth` is the number of containers open at each
// event; end events arrive only for kept containers, so the stack is trimmed to `depth` instead.
class Pruner {
public:
    bool tooDeep() const { return tooDeep_; }

    bool operator()(int depth, Event event, const nlohmann::json& parsed)
    {
        const auto open = static_cast<std::size_t>(depth);
        if (event == Event::object_end || event == Event::array_end) {
            return true;
        }
        stack_.resize(std::min(open, stack_.size()));
        OpenContainer* container = stack_.empty() ? nullptr : &stack_.back();
        switch (event) {
        case Event::object_start:
        case Event::array_start:
            if (open >= maximumDocumentDepth) {
                tooDeep_ = true;
                return false;
            }
            {
                // Read before the push, which may move the stack and leave `container` dangling.
                const bool kept = container == nullptr || container->role != Role::Other;
                stack_.push_back({childRole(container, event == Event::object_start), {}});
                return kept;
            }
        case Event::key:
            return keep(*container, parsed.get_ref<const std::string&>());
        default:
            return container == nullptr || container->role != Role::Other;
        }
    }

private:
    static bool keep(OpenContainer& object, std::string_view key)
    {
        const auto kept = keptKeys(object.role);
        const auto found = std::find(kept.begin(), kept.end(), key);
        object.lastKey = found == kept.end() ? std::string_view() : *found;
        return found != kept.end();
    }

    std::vector<OpenContainer> stack_;
    bool tooDeep_ = false;
};

} // namespace

std::optional<nlohmann::json> decodeLimitsDocument(std::string_view bytes)
{
    // Valid JSON holds no NUL byte, but the parser would take one as the end of the input.
    if (bytes.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    Pruner pruner;
    nlohmann::json document = nlohmann::json::parse(
        bytes.begin(), bytes.end(),
        [&pruner](int depth, Event event, const nlohmann::json& parsed) {
            return pruner(depth, event, parsed);
        },
        false);
    if (pruner.tooDeep() || !document.is_object()) {
        return std::nullopt;
    }
    return document;
}

} // namespace vantrel::limits
