#pragma once

#include <string_view>

namespace vantrel {

// The texts that name the platform the program runs on, defined once per platform.
struct PlatformWording {
    std::string_view statusItemToolTip; // "Vantrel Solvane · limity a výkon …"
    std::string_view machineName;       // in the status line: "Limity HH:mm · … každé 2 s"
    std::string_view gpuPerCoreNote;    // under the GPU cores: who does not report them
};

extern const PlatformWording platformWording;

} // namespace vantrel
