#include "Vantrel/app/InstallLayout.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

TEST(InstallLayout, PartsBesideTheExecutable)
{
    struct Case {
        const char* executable;
        const char* panelModule;
        const char* resources;
    };
    const std::vector<Case> cases{
        {"/usr/bin/vantrel", "/usr/lib/vantrel/vantrel_panel.so", "/usr/share/vantrel"},
        {"/home/u/build/bin/vantrel", "/home/u/build/lib/vantrel/vantrel_panel.so",
         "/home/u/build/share/vantrel"},
        {"/Applications/Vantrel.app/Contents/MacOS/vantrel",
         "/Applications/Vantrel.app/Contents/PlugIns/vantrel_panel.so",
         "/Applications/Vantrel.app/Contents/Resources"},
        {"/Users/u/build/Vantrel.app/Contents/MacOS/vantrel",
         "/Users/u/build/Vantrel.app/Contents/PlugIns/vantrel_panel.so",
         "/Users/u/build/Vantrel.app/Contents/Resources"},
        // Only a MacOS directory inside Contents makes a bundle; letter case counts.
        {"/opt/MacOS/vantrel", "/opt/lib/vantrel/vantrel_panel.so", "/opt/share/vantrel"},
        {"/opt/Contents/bin/vantrel", "/opt/Contents/lib/vantrel/vantrel_panel.so",
         "/opt/Contents/share/vantrel"},
        {"/x/contents/macos/vantrel", "/x/contents/lib/vantrel/vantrel_panel.so",
         "/x/contents/share/vantrel"},
        {"/vantrel", "/lib/vantrel/vantrel_panel.so", "/share/vantrel"},
    };
    for (const auto& c : cases) {
        const InstallLayout layout = installLayoutOf(c.executable);
        EXPECT_EQ(layout.panelModule, c.panelModule) << c.executable;
        EXPECT_EQ(layout.resources, c.resources) << c.executable;
    }
}

} // namespace
} // namespace vantrel
