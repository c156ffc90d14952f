#include "Vantrel/app/PlatformWording.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(PlatformWording, TheMacKeepsItsOwnWords)
{
    EXPECT_EQ(platformWording.statusItemToolTip, "Vantrel Solvane · limity a výkon Macu");
    EXPECT_EQ(platformWording.machineName, "Mac");
    EXPECT_EQ(platformWording.gpuPerCoreNote,
              "macOS neposkytuje vytížení jednotlivých GPU jader. — = nedostupné.");
}

} // namespace
} // namespace vantrel
