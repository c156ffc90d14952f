#include "Vantrel/app/PlatformWording.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

TEST(PlatformWording, ALinuxDesktopIsTheComputerAndItsDriversLackPerCoreFigures)
{
    EXPECT_EQ(platformWording.statusItemToolTip, "Vantrel Solvane · limity a výkon počítače");
    EXPECT_EQ(platformWording.machineName, "počítač");
    EXPECT_EQ(platformWording.gpuPerCoreNote,
              "Ovladač neposkytuje vytížení jednotlivých GPU jader. — = nedostupné.");
}

} // namespace
} // namespace vantrel
