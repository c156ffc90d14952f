#include "Vantrel/app/PlatformWording.h"

namespace vantrel {

// A Linux desktop is "the computer"; the per-core GPU figures are missing because the drivers do not report
// them.
const PlatformWording platformWording{
    "Vantrel Solvane · limity a výkon počítače",
    "počítač",
    "Ovladač neposkytuje vytížení jednotlivých GPU jader. — = nedostupné.",
};

} // namespace vantrel
