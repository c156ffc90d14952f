#pragma once

namespace vantrel {

// The normal start: the tray item, the panel and the event loop. Returns the exit status.
int runApplication(int argc, char** argv);

} // namespace vantrel
