// The panel module's entry point, looked up by name from the executable (see PanelModule.h).
#include "Vantrel/app/Application.h"

extern "C" __attribute__((visibility("default"))) int vantrel_run_application(int argc, char** argv)
{
    return vantrel::runApplication(argc, argv);
}
