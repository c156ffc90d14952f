#include "Vantrel/app/PanelModule.h"

#include <gtest/gtest.h>

namespace {

TEST(PanelModule, LiesUnderLibBesideTheExecutablesDirectory)
{
    EXPECT_EQ(vantrel::panelModuleOf("/usr/bin/vantrel"), "/usr/lib/vantrel/vantrel_panel.so");
    EXPECT_EQ(vantrel::panelModuleOf("/home/u/build/bin/vantrel"),
              "/home/u/build/lib/vantrel/vantrel_panel.so");
}

} // namespace
