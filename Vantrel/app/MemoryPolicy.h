#pragma once

namespace vantrel {

// Keeps large heap blocks (from 256 KiB) in mappings of their own, returned to the system when freed.
// glibc otherwise raises that threshold to the largest block freed so far, after which large blocks come
// from the heap and stay resident once freed: one big limits document would leave the program megabytes
// larger for as long as it runs. Call once, before other threads start.
void keepLargeBlocksMapped();

} // namespace vantrel
