#pragma once

#include <mach/mach.h>
#include <mach/mach_port.h>

namespace vantrel::macos_source {

// A send right to this machine's host port, taken once and given back at the end.
class HostPort {
public:
    HostPort() : port(mach_host_self()) {}
    ~HostPort() { static_cast<void>(mach_port_deallocate(mach_task_self(), port)); }
    HostPort(const HostPort&) = delete;
    HostPort& operator=(const HostPort&) = delete;
    HostPort(HostPort&&) = delete;
    HostPort& operator=(HostPort&&) = delete;

    host_t get() const { return port; }

private:
    host_t port;
};

} // namespace vantrel::macos_source
