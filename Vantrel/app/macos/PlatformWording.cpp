#include "Vantrel/app/PlatformWording.h"

namespace vantrel {

// On macOS the machine is "the Mac", and the system itself offers no per-core GPU figures.
const PlatformWording platformWording{
    "Vantrel Solvane · limity a výkon Macu",
    "Mac",
    "macOS neposkytuje vytížení jednotlivých GPU jader. — = nedostupné.",
};

} // namespace vantrel
