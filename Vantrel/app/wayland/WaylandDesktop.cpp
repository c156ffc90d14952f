#include "Vantrel/app/wayland/WaylandDesktop.h"

#include <cstdio>
#include <unistd.h>

namespace vantrel {

WaylandDesktop::WaylandDesktop(std::unique_ptr<X11Desktop> panelDesktop,
                               std::unique_ptr<WaylandConnection> connection,
                               std::unique_ptr<ToplevelSource> source)
    : panelDesktop_(std::move(panelDesktop)), connection_(std::move(connection)), source_(std::move(source))
{
    // Between two windows a compositor may report none for a moment: the settler leaves that out.
    connect(source_.get(), &ToplevelSource::frontmostChanged, &settler_,
            [this] { settler_.activeWindowChanged(!source_->frontmost().has_value()); });
    connect(&settler_, &FocusSettler::settled, this, &Desktop::frontmostChanged);
    connect(source_.get(), &ToplevelSource::lost, this, &WaylandDesktop::sourceLost);
    connect(source_.get(), &ToplevelSource::reachChanged, this, [this] {
        emit frontmostReachChanged();
        emit frontmostChanged();
    });
    connect(panelDesktop_.get(), &Desktop::frontmostChanged, this, [this] {
        if (!sourceTells()) {
            emit frontmostChanged();
        }
    });
}

std::optional<FrontmostWindow> WaylandDesktop::frontmostWindow()
{
    if (!sourceTells()) {
        return panelDesktop_->frontmostWindow();
    }
    auto window = source_->frontmost();
    if (window && window->pid == getpid()) {
        window->ownProcess = true;
    }
    return window;
}

void WaylandDesktop::sourceLost()
{
    static_cast<void>(
        std::fputs("vantrel: the compositor no longer tells which window is in front; the panel "
                   "shows only when pinned\n",
                   stderr));
}

} // namespace vantrel
