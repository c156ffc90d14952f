// The sample mode alone, without the panel's libraries (Qt, ICU, xcb) linked in: the peer that shows how much
// of `vantrel --sample`'s whole-process cost is the loading of those libraries rather than the sampling.
#include "Vantrel/app/SampleMode.h"

#include <cstdio>
#include <span>

int main(int argc, char** argv)
{
    if (vantrel::selectsSampleMode(std::span(argv, static_cast<std::size_t>(argc))))
        return vantrel::runSampleMode();
    static_cast<void>(std::fputs("usage: vantrel_sample_only --sample\n", stderr));
    return 2;
}
