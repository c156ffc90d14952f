#pragma once

namespace vantrel {

// The panel (Qt, ICU, xcb) is a module loaded only for the normal start, so that `--sample` does not pay
// for loading those libraries. Its one entry point, exported with C linkage:
//   extern "C" int vantrel_run_application(int argc, char** argv);
inline constexpr const char* panelEntryName = "vantrel_run_application";
using PanelEntry = int (*)(int argc, char** argv);

// Loads the module where the running executable's layout puts it (InstallLayout.h) and runs the
// application from it. A module that cannot be found or loaded is one line on standard error and status 1.
int runPanelModule(int argc, char** argv);

} // namespace vantrel
