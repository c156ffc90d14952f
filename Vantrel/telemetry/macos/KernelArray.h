#pragma once

#include <cstddef>
#include <mach/mach.h>
#include <mach/vm_map.h>

namespace vantrel::macos_source {

// An array the kernel allocated in this task's address space for a Mach reply (host_processor_info's),
// given back with vm_deallocate.
class KernelArray {
public:
    KernelArray(processor_info_array_t owned, mach_msg_type_number_t integers)
        : array(owned), length(integers)
    {}
    ~KernelArray()
    {
        if (array != nullptr)
            static_cast<void>(vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(array),
                                            length * sizeof(integer_t)));
    }
    KernelArray(const KernelArray&) = delete;
    KernelArray& operator=(const KernelArray&) = delete;
    KernelArray(KernelArray&&) = delete;
    KernelArray& operator=(KernelArray&&) = delete;

private:
    processor_info_array_t array;
    mach_msg_type_number_t length;
};

} // namespace vantrel::macos_source
