#include "Vantrel/app/wayland/SwayIpcFraming.h"

#include <gtest/gtest.h>

namespace vantrel::sway {
namespace {

std::string header(std::uint32_t length, std::uint32_t type)
{
    std::string bytes = "i3-ipc";
    bytes.append(reinterpret_cast<const char*>(&length), sizeof length);
    bytes.append(reinterpret_cast<const char*>(&type), sizeof type);
    return bytes;
}

TEST(SwayIpcFraming, EncodesMagicLengthTypeAndPayload)
{
    EXPECT_EQ(encodeMessage(MessageType::subscribe, R"(["window"])"), header(10, 2) + R"(["window"])");
    EXPECT_EQ(encodeMessage(MessageType::getTree, ""), header(0, 4));
}

TEST(SwayIpcFraming, ReadsWhatItWrote)
{
    MessageReader reader;
    reader.append(encodeMessage(MessageType::getTree, "{}") + encodeMessage(MessageType::runCommand, "[]"));
    const auto first = reader.next();
    const auto second = reader.next();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->type, 4U);
    EXPECT_EQ(first->payload, "{}");
    EXPECT_EQ(second->type, 0U);
    EXPECT_EQ(second->payload, "[]");
    EXPECT_FALSE(reader.next());
    EXPECT_FALSE(reader.failed());
}

TEST(SwayIpcFraming, WaitsForMessagesCutAnywhere)
{
    const std::string event = header(12, windowEvent) + R"({"change":1})";
    for (std::size_t cut = 0; cut <= event.size(); ++cut) {
        MessageReader reader;
        reader.append(std::string_view(event).substr(0, cut));
        if (cut < event.size()) {
            EXPECT_FALSE(reader.next()) << cut;
        }
        reader.append(std::string_view(event).substr(cut));
        const auto message = reader.next();
        ASSERT_TRUE(message) << cut;
        EXPECT_EQ(message->type, windowEvent);
        EXPECT_EQ(message->payload, R"({"change":1})");
        EXPECT_FALSE(reader.failed());
    }
}

struct GarbageCase {
    const char* description;
    std::string bytes;
};

class SwayIpcGarbageTest : public testing::TestWithParam<GarbageCase> {};

TEST_P(SwayIpcGarbageTest, FailsTheReaderForGood)
{
    MessageReader reader;
    reader.append(GetParam().bytes);
    EXPECT_FALSE(reader.next());
    EXPECT_TRUE(reader.failed());
    reader.append(encodeMessage(MessageType::getTree, "{}"));
    EXPECT_FALSE(reader.next());
}

INSTANTIATE_TEST_SUITE_P(Garbage, SwayIpcGarbageTest,
                         testing::Values(GarbageCase{"another protocol", "HTTP/1.1 200 OK\r\n"},
                                         GarbageCase{"a wrong first byte", "x"},
                                         GarbageCase{"a length beyond the limit",
                                                     header(maximumPayload + 1, 4)},
                                         GarbageCase{"the largest length", header(0xFFFFFFFFU, 4)}));

TEST(SwayIpcFraming, AcceptsThePayloadLimitItself)
{
    MessageReader reader;
    reader.append(header(maximumPayload, 4));
    EXPECT_FALSE(reader.next());
    EXPECT_FALSE(reader.failed());
}

} // namespace
} // namespace vantrel::sway
