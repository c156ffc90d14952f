#include "Vantrel/app/PanelModule.h"
#include "Vantrel/app/SampleMode.h"

#include <span>

int main(int argc, char** argv)
{
    if (vantrel::selectsSampleMode(std::span(argv, static_cast<std::size_t>(argc))))
        return vantrel::runSampleMode();
    return vantrel::runPanelModule(argc, argv);
}
