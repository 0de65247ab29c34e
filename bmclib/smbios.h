// Finding the IPMI device among the firmware's SMBIOS structures. Firmware can be wrong: every read stays inside the
// span.
#pragma once

#include "frudata/types.h"

#include <optional>
#include <span>

namespace Frudata_Private {

/// Where the SMBIOS structures are.
struct SMBIOS_TABLE {
    UINT32 address; ///< physical address of the first structure
    UINT16 structures;
};

/// What the IPMI Device Information structure (type 38) says.
struct SMBIOS_IPMI_DEVICE {
    UINT8 interfaceType; ///< 1 is KCS
    UINT32 baseAddress;  ///< bit 0 set: in I/O space
};

/// Looks for the SMBIOS entry point in `firmware`, the mapping of the firmware's memory.
std::optional<SMBIOS_TABLE> FindSmbiosTable(std::span<const UINT8> firmware);

/// Looks for the IPMI device among at most `structures` structures.
std::optional<SMBIOS_IPMI_DEVICE> FindIpmiDevice(std::span<const UINT8> table, UINT16 structures);

} // namespace Frudata_Private
