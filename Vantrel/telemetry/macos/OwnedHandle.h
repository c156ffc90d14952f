#pragma once

#include <utility>

namespace vantrel::macos_source {

// Owns one handle that the system gave out (a CoreFoundation reference, an I/O Kit object) and gives it
// back with `release` when it goes; the empty value, Handle{}, is never released.
template <typename Handle, auto release> class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(Handle owned) : handle(owned) {}
    ~OwnedHandle()
    {
        if (handle != Handle{})
            static_cast<void>(release(handle));
    }
    OwnedHandle(OwnedHandle&& other) noexcept : handle(std::exchange(other.handle, Handle{})) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    OwnedHandle(const OwnedHandle&) = delete;
    OwnedHandle& operator=(const OwnedHandle&) = delete;

    Handle get() const { return handle; }
    explicit operator bool() const { return handle != Handle{}; }

private:
    Handle handle{};
};

} // namespace vantrel::macos_source
