#pragma once

#include "Vantrel/app/wayland/ToplevelSource.h"

namespace vantrel {

// A Wayland session where nothing Vantrel knows tells the window in front.
class SilentSource : public ToplevelSource {
    Q_OBJECT

public:
    explicit SilentSource(MissingSource missing) : missing_(missing) {}

    std::optional<FrontmostWindow> frontmost() const override { return std::nullopt; }
    FrontmostReach reach() const override { return {FrontmostReach::State::tellsNothing, missing_, {}}; }

private:
    MissingSource missing_;
};

} // namespace vantrel
