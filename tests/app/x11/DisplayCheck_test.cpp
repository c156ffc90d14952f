#include "Vantrel/app/x11/DisplayCheck.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(DisplayCheck, AReachableDisplayIsNoProblem)
{
    EXPECT_EQ(displayProblem({":0", "", true}), std::nullopt);
    // XWayland: a Wayland session with an X display beside it.
    EXPECT_EQ(displayProblem({":1", "wayland-0", true}), std::nullopt);
}

TEST(DisplayCheck, NoDisplayIsOneLineAboutDisplay)
{
    const auto problem = displayProblem({"", "", false});
    ASSERT_TRUE(problem.has_value());
    EXPECT_NE(problem->find("DISPLAY is not set"), std::string::npos);
    EXPECT_EQ(problem->find('\n'), std::string::npos);
}

TEST(DisplayCheck, WaylandWithoutXWaylandSaysSo)
{
    const auto problem = displayProblem({"", "wayland-0", false});
    ASSERT_TRUE(problem.has_value());
    EXPECT_NE(problem->find("Wayland"), std::string::npos);
    EXPECT_NE(problem->find("XWayland"), std::string::npos);
    EXPECT_EQ(problem->find('\n'), std::string::npos);
}

TEST(DisplayCheck, AnUnreachableDisplayIsNamed)
{
    const auto problem = displayProblem({":77", "", false});
    ASSERT_TRUE(problem.has_value());
    EXPECT_NE(problem->find("\":77\""), std::string::npos);
}

TEST(DisplayCheck, TheProcessEnvironmentWithoutDisplayIsNotReachable)
{
    ::unsetenv("DISPLAY");
    const DisplayEnvironment environment = currentDisplayEnvironment();
    EXPECT_TRUE(environment.display.empty());
    EXPECT_FALSE(environment.reachable);
}

} // namespace
} // namespace vantrel
