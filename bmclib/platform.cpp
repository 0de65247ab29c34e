#include "bmclib/platform.h"

#include <fcntl.h>
#include <sys/mman.h>

// Declared here because <sys/io.h> brings inline definitions of inb and outb, which no host could replace.
extern "C" int iopl(int level) noexcept;

namespace Frudata_Private {

namespace {

enum PORT_ACCESS {
    PORT_ACCESS_NOT_ASKED,
    PORT_ACCESS_GRANTED,
    PORT_ACCESS_REFUSED
};

// The kernel grants port access to a thread, not to a process: in any other thread a port instruction faults.
// Initial-exec spares the 32-bit library a call of the loader for each access.
[[gnu::tls_model("initial-exec")]] constinit thread_local PORT_ACCESS g_portAccess = PORT_ACCESS_NOT_ASKED;

// Compatibility: eight bits wide. A descriptor above 255 is cut.
UINT8 g_memoryDescriptor = 0;

} // namespace

bool g_portReadRefused = false;

bool AcquirePortAccess() {
    g_portAccess = iopl(3) == 0 ? PORT_ACCESS_GRANTED : PORT_ACCESS_REFUSED;
    return g_portAccess == PORT_ACCESS_GRANTED;
}

bool HavePortAccess() {
    if (g_portAccess == PORT_ACCESS_NOT_ASKED)
        return AcquirePortAccess();
    return g_portAccess == PORT_ACCESS_GRANTED;
}

bool OpenPhysicalMemory() {
    const int descriptor = open("/dev/mem", O_RDONLY | O_CLOEXEC);
    g_memoryDescriptor = static_cast<UINT8>(descriptor);
    return descriptor >= 0;
}

const UINT8* MapPhysicalMemory(UINT32 address) {
    void* const mapping =
        mmap(nullptr, PHYSICAL_MAPPING_SIZE, PROT_READ, MAP_SHARED, g_memoryDescriptor, static_cast<off_t>(address));
    return mapping == MAP_FAILED ? nullptr : static_cast<const UINT8*>(mapping);
}

} // namespace Frudata_Private
