#include "Vantrel/app/MainThreadQueue.h"

#include <QCoreApplication>
#include <QEvent>

namespace vantrel {
namespace {

const auto blockEventType = static_cast<QEvent::Type>(QEvent::registerEventType());

class BlockEvent : public QEvent {
public:
    explicit BlockEvent(std::function<void()> block) : QEvent(blockEventType), block_(std::move(block)) {}

    void run() const { block_(); }

private:
    std::function<void()> block_;
};

class BlockReceiver : public QObject {
public:
    using QObject::QObject;

protected:
    void customEvent(QEvent* event) override
    {
        if (event->type() == blockEventType) {
            static_cast<BlockEvent*>(event)->run();
        }
    }
};

} // namespace

MainThreadQueue::MainThreadQueue(QObject* owner) : receiver_(new BlockReceiver(owner))
{}

void MainThreadQueue::post(std::function<void()> block)
{
    const std::lock_guard lock(mutex_);
    if (receiver_ != nullptr) {
        // Qt owns a posted event, and drops it if the receiver is destroyed before it is delivered.
        QCoreApplication::postEvent(receiver_, new BlockEvent(std::move(block)));
    }
}

void MainThreadQueue::close()
{
    const std::lock_guard lock(mutex_);
    receiver_ = nullptr;
}

} // namespace vantrel
