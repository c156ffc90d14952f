#include "Vantrel/telemetry/InterfaceList.h"

#include "fuzz/FuzzSupport.h"
#include <bit>

namespace {

std::uint64_t littleEndianAt(std::span<const std::byte> bytes, std::size_t offset, std::size_t width)
{
    std::uint64_t value = 0;
    for (std::size_t k = width; k-- > 0;)
        value = (value << 8u) | std::to_integer<std::uint64_t>(bytes[offset + k]);
    return value;
}

// The walk spelt out with explicit bounds: messages of at least 112 bytes, a zero length or one past the end
// stops, records of 160 bytes and more with type 18 and the wanted index match.
std::optional<vantrel::InterfaceCounters> referenceWalk(std::span<const std::byte> list, std::uint16_t index)
{
    std::size_t offset = 0;
    while (list.size() >= 112 && offset <= list.size() - 112) {
        const std::size_t length = littleEndianAt(list, offset, 2);
        if (length == 0 || length > list.size() - offset)
            return std::nullopt;
        if (length >= 160 && littleEndianAt(list, offset + 3, 1) == 18 &&
            littleEndianAt(list, offset + 12, 2) == index)
            return vantrel::InterfaceCounters{littleEndianAt(list, offset + 96, 8),
                                              littleEndianAt(list, offset + 104, 8),
                                              littleEndianAt(list, offset + 48, 8)};
        offset += length;
    }
    return std::nullopt;
}

} // namespace

// Two bytes of wanted interface index (little-endian), then the interface list itself, which ends exactly
// where the input does, so that any read past it is caught.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vantrel;
    static_assert(std::endian::native == std::endian::little, "the list is laid out in host byte order");
    if (size < 2)
        return 0;
    const auto index = static_cast<std::uint16_t>(data[0] | (data[1] << 8u));
    const std::span<const std::byte> list = fuzz::bytesOf(data + 2, size - 2);
    const auto found = findInterfaceCounters(list, index);
    const auto expected = referenceWalk(list, index);
    fuzz::require(found.has_value() == expected.has_value(), "a record is found exactly where one lies");
    if (found)
        fuzz::require(found->received == expected->received && found->sent == expected->sent &&
                          found->speed == expected->speed,
                      "the counters are the ones of that record");
    return 0;
}
