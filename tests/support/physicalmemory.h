// Stands in for the physical memory of the machine that runs the tests, whose firmware is none of their business. To be
// included once in an executable.
#pragma once

#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

namespace Frudata_Tests {

/// What opening the physical memory returns.
inline int g_memoryDescriptor = -1;
inline int g_memoryOpened = 0;

} // namespace Frudata_Tests

extern "C" {
// Under the name that 64-bit file offsets give the function.
int HostOpen(const char* path, int flags, ...) __asm__("open64");
int HostOpen(const char* path, int flags, ...) {
    if (std::strcmp(path, "/dev/mem") != 0)
        return static_cast<int>(syscall(SYS_openat, -100, path, flags, 0600));
    ++Frudata_Tests::g_memoryOpened;
    return Frudata_Tests::g_memoryDescriptor;
}
}
