// What the BMC layer needs of the machine: the privilege to touch I/O ports, and physical memory.
#pragma once

#include "frudata/types.h"

namespace Frudata_Private {

/// Size of every mapping of physical memory, in bytes.
inline constexpr size_t PHYSICAL_MAPPING_SIZE = 65535;

/// Asks the kernel for port access for the calling thread. @return whether it was granted
bool AcquirePortAccess();

/// Whether the calling thread may touch ports. Asks the kernel if nobody has.
bool HavePortAccess();

/// Set by the library's own inb when a read finds no port access. A host's inb never sets it.
extern bool g_portReadRefused;

/// Opens the physical memory, read-only, for the life of the process. @return false on failure
bool OpenPhysicalMemory();

/// Maps PHYSICAL_MAPPING_SIZE bytes from `address`, a multiple of the page size, read-only and for the
/// life of the process. @return null on any failure
const UINT8* MapPhysicalMemory(UINT32 address);

} // namespace Frudata_Private
