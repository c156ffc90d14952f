#include "Vantrel/app/x11/WindowIdentity.h"

#include <gtest/gtest.h>

#include <string>

namespace vantrel {
namespace {

using namespace std::string_literals;

struct WmClassCase {
    std::string property;
    std::string instance;
    std::string windowClass;
};

class WmClassTest : public testing::TestWithParam<WmClassCase> {};

TEST_P(WmClassTest, TakesTheInstanceAndTheClass)
{
    const WmClass parsed = parseWmClass(GetParam().property);
    EXPECT_EQ(parsed.instance, GetParam().instance);
    EXPECT_EQ(parsed.windowClass, GetParam().windowClass);
}

INSTANTIATE_TEST_SUITE_P(Properties, WmClassTest,
                         testing::Values(WmClassCase{"codex\0Codex\0"s, "codex", "Codex"},
                                         WmClassCase{"xterm\0XTerm\0"s, "xterm", "XTerm"},
                                         WmClassCase{"chat\0Codex Beta\0"s, "chat", "Codex Beta"},
                                         WmClassCase{"codex\0Codex"s, "codex", "Codex"}, // no final NUL
                                         WmClassCase{"codex\0"s, "codex", ""},           // instance only
                                         WmClassCase{"codex"s, "codex", ""}, WmClassCase{""s, "", ""},
                                         WmClassCase{"\0\0"s, "", ""}));

} // namespace
} // namespace vantrel
