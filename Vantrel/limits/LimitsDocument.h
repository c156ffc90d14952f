#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <optional>
#include <string_view>

namespace vantrel::limits {

// Containers may nest this deep at most; deeper documents are rejected, as Foundation's JSON reader
// rejects them. (The parse itself is iterative: depth costs it no stack.)
inline constexpr std::size_t maximumDocumentDepth = 512;

// Strict UTF-8 JSON, no trailing content; absent unless the top-level value is an object.
// The document keeps only the members the interpretation reads ("buckets", "observedAt", and the listed
// members of buckets and windows); other members are dropped and containers in the wrong place are
// emptied, which leaves every value's type as it was. So a document padded with megabytes of unread
// data is released here, on the worker, and what reaches the main thread is small.
std::optional<nlohmann::json> decodeLimitsDocument(std::string_view bytes);

} // namespace vantrel::limits
