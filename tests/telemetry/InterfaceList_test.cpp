#include "Vantrel/telemetry/InterfaceList.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace vantrel {
namespace {

constexpr std::uint8_t interfaceInfo2 = 18;

// Builds an interface list in host byte order, one message at a time, as the kernel lays it out.
class ListBuilder {
public:
    ListBuilder& message(std::uint16_t length, std::uint8_t type, std::uint16_t index,
                         std::uint64_t speed = 0, std::uint64_t received = 0, std::uint64_t sent = 0,
                         std::size_t storage = 0)
    {
        const std::size_t offset = bytes.size();
        bytes.resize(offset + (storage != 0 ? storage : length));
        put(offset, length);
        put(offset + 3, type);
        put(offset + 12, index);
        if (bytes.size() >= offset + 112) {
            put(offset + 48, speed);
            put(offset + 96, received);
            put(offset + 104, sent);
        }
        return *this;
    }
    std::span<const std::byte> buffer() const { return bytes; }
    std::vector<std::byte> bytes;

private:
    template <typename T> void put(std::size_t at, T value)
    {
        if (at + sizeof value <= bytes.size())
            std::memcpy(bytes.data() + at, &value, sizeof value);
    }
};

TEST(InterfaceList, FindsTheRecordOfTheInterface)
{
    ListBuilder list;
    list.message(160, interfaceInfo2, 1, 10, 11, 12).message(168, interfaceInfo2, 4, 1'000'000'000, 777, 888);
    const auto counters = findInterfaceCounters(list.buffer(), 4);
    ASSERT_TRUE(counters.has_value());
    EXPECT_EQ(counters->speed, 1'000'000'000U);
    EXPECT_EQ(counters->received, 777U);
    EXPECT_EQ(counters->sent, 888U);
}

TEST(InterfaceList, SkipsOtherTypesAndIndexes)
{
    ListBuilder list;
    list.message(160, 14, 4, 1, 1, 1)
        .message(160, interfaceInfo2, 5, 2, 2, 2)
        .message(160, interfaceInfo2, 4, 3, 3, 3);
    EXPECT_EQ(findInterfaceCounters(list.buffer(), 4)->speed, 3U);
}

TEST(InterfaceList, WrongTypeOrIndexAloneIsNotFound)
{
    ListBuilder wrongType;
    wrongType.message(160, 14, 4, 1, 1, 1);
    EXPECT_FALSE(findInterfaceCounters(wrongType.buffer(), 4).has_value());
    ListBuilder wrongIndex;
    wrongIndex.message(160, interfaceInfo2, 3, 1, 1, 1);
    EXPECT_FALSE(findInterfaceCounters(wrongIndex.buffer(), 4).has_value());
}

TEST(InterfaceList, ZeroLengthEndsTheWalk)
{
    ListBuilder list;
    list.message(0, interfaceInfo2, 4, 1, 1, 1, 160).message(160, interfaceInfo2, 4, 2, 2, 2);
    EXPECT_FALSE(findInterfaceCounters(list.buffer(), 4).has_value());
}

TEST(InterfaceList, MessageShorterThanTheRecordIsSkipped)
{
    ListBuilder list;
    list.message(159, interfaceInfo2, 4, 1, 1, 1).message(160, interfaceInfo2, 4, 2, 2, 2);
    EXPECT_EQ(findInterfaceCounters(list.buffer(), 4)->speed, 2U);
    ListBuilder alone;
    alone.message(112, interfaceInfo2, 4, 1, 1, 1);
    EXPECT_FALSE(findInterfaceCounters(alone.buffer(), 4).has_value());
}

TEST(InterfaceList, LengthRunningPastTheEndStopsTheWalk)
{
    ListBuilder list;
    list.message(200, interfaceInfo2, 4, 1, 1, 1, 160);
    EXPECT_FALSE(findInterfaceCounters(list.buffer(), 4).has_value());
}

TEST(InterfaceList, BufferShorterThanAHeaderIsNotWalked)
{
    ListBuilder list;
    list.message(111, interfaceInfo2, 4);
    EXPECT_FALSE(findInterfaceCounters(list.buffer(), 4).has_value());
    EXPECT_FALSE(findInterfaceCounters({}, 4).has_value());
    // A full record followed by a tail too short to be a message: the record is still found.
    ListBuilder tail;
    tail.message(160, interfaceInfo2, 4, 9, 9, 9).message(50, interfaceInfo2, 4);
    EXPECT_EQ(findInterfaceCounters(tail.buffer(), 4)->speed, 9U);
}

TEST(InterfaceList, SampleOfTheNamedInterface)
{
    ListBuilder list;
    list.message(160, interfaceInfo2, 1, 10, 11, 12).message(160, interfaceInfo2, 4, 1'000'000'000, 777, 888);
    const auto sample = interfaceSampleFrom("en0", 4, list.buffer());
    ASSERT_TRUE(sample.has_value());
    EXPECT_EQ(sample->name, "en0");
    EXPECT_EQ(sample->received, 777U);
    EXPECT_EQ(sample->sent, 888U);
    EXPECT_EQ(sample->speed, 1'000'000'000U);
}

TEST(InterfaceList, NoSampleWithoutAnIndexAListOrARecord)
{
    ListBuilder list;
    list.message(160, interfaceInfo2, 0, 1, 1, 1).message(160, interfaceInfo2, 4, 2, 2, 2);
    struct Case {
        unsigned int index;
        std::optional<std::span<const std::byte>> buffer;
        const char* what;
    };
    const std::vector<Case> cases{
        {0, list.buffer(), "unknown name (index 0)"},
        {65'536 + 4, list.buffer(), "an index wider than ifm_index"},
        {4, std::nullopt, "the sysctl failed"},
        {4, std::span<const std::byte>{}, "an empty list"},
        {5, list.buffer(), "no record of the interface"},
    };
    for (const auto& c : cases)
        EXPECT_FALSE(interfaceSampleFrom("en0", c.index, c.buffer).has_value()) << c.what;
}

} // namespace
} // namespace vantrel
