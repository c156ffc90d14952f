#pragma once

namespace vantrel::ui {

// Registers, once per process, the accessible interfaces of the bar (a progress bar with a value), the
// mini switch (a check box with press and toggle actions) and the meter row (a group named by its
// caption). Every widget of the kit calls it from its constructor.
void installAccessibleFactory();

} // namespace vantrel::ui
