#pragma once

#include <QObject>

#include <functional>
#include <mutex>

namespace vantrel {

// Hands blocks from a background thread to the main thread, to run there while their owner lives.
// A background worker may outlive the owner (a limits script that never ends outlives the event loop);
// the lock only keeps a post from racing with the owner's destruction.
class MainThreadQueue {
public:
    // Main thread. The blocks are run by a child of the owner, so they end with it.
    explicit MainThreadQueue(QObject* owner);

    // Any thread. The block runs later on the main thread, and not at all once the owner is gone.
    void post(std::function<void()> block);
    // Main thread, before the owner is destroyed: later posts are dropped.
    void close();

private:
    std::mutex mutex_;
    QObject* receiver_;
};

} // namespace vantrel
