// Start-up: how can the BMC be reached? accesspath.cpp turns the finding into the way of each request.
//
//                                              result  finding     printed
//   IMB driver of the host opens                    0  ACCESS_IMB
//   physical memory cannot be mapped               -1  ACCESS_OWN
//   no SMBIOS entry point                        -502  ACCESS_OWN  "SMBIOS Table Not Found!!!"
//   IPMI device, KCS, its status port answers       0  ACCESS_OWN
//   IPMI device, KCS, its status port is silent  -502  ACCESS_OWN  "No Response from BMC...Exiting"
//   IPMI device of another kind                  -502  ACCESS_NONE
//   no IPMI device, default port answers            0  ACCESS_OWN
//   no IPMI device, default port is silent         -1  ACCESS_OWN  "No Response from BMC...Exiting"
#include "bmclib/accesspath.h"
#include "bmclib/platform.h"
#include "bmclib/smbios.h"
#include "frudata/bmclib.h"

#include <cwchar>
#include <unistd.h>

namespace {

using namespace Frudata_Private;

constexpr UINT32 FIRMWARE_ADDRESS = 0xF0000;
constexpr UINT8 INTERFACE_TYPE_KCS = 1;
constexpr UINT32 DEFAULT_KCS_BASE = 0x0CA2;
constexpr int MAP_FAILURE = -1;
constexpr int DEFAULT_PORT_SILENT = -1;

// Compatibility: the base port that the firmware names serves the probe only. The driver talks to KCSAddress, which
// the host sets.
UINT32 kcsBaseAddress = 0;

int ProbeStatusPort(int silentResult) {
    AcquirePortAccess();
    if (inb(static_cast<UINT16>(kcsBaseAddress + 1)) < 0xFF)
        return 0;
    std::wprintf(L"No Response from BMC...Exiting\n");
    return silentResult;
}

int TryIpmiDevice(const SMBIOS_IPMI_DEVICE& device) {
    if (device.interfaceType != INTERFACE_TYPE_KCS) {
        g_Mbmcsupport = ACCESS_NONE;
        return BMCLIB_ERR_NO_BMC;
    }
    kcsBaseAddress = device.baseAddress - 1; // clears the I/O space flag
    return ProbeStatusPort(BMCLIB_ERR_NO_BMC);
}

int TryDefaultPort() {
    kcsBaseAddress = DEFAULT_KCS_BASE;
    return ProbeStatusPort(DEFAULT_PORT_SILENT);
}

} // namespace

int MainInit(void) {
    if (startIPMI() != 0) {
        g_Mbmcsupport = ACCESS_IMB;
        return 0;
    }
    const UINT8* const firmware = OpenPhysicalMemory() ? MapPhysicalMemory(FIRMWARE_ADDRESS) : nullptr;
    if (!firmware)
        return MAP_FAILURE;
    const auto table = FindSmbiosTable({firmware, PHYSICAL_MAPPING_SIZE});
    if (!table) {
        std::wprintf(L"SMBIOS Table Not Found!!!\n");
        return BMCLIB_ERR_NO_BMC;
    }
    const UINT32 offsetInPage = table->address & (static_cast<UINT32>(getpagesize()) - 1);
    const UINT8* const structures = MapPhysicalMemory(table->address - offsetInPage);
    if (!structures)
        return MAP_FAILURE;
    const auto device =
        FindIpmiDevice({structures + offsetInPage, PHYSICAL_MAPPING_SIZE - offsetInPage}, table->structures);
    return device ? TryIpmiDevice(*device) : TryDefaultPort();
}

int BmcLibInitialize(void) {
    return MainInit() == 0 ? 0 : BMCLIB_ERR_NO_BMC;
}

int BmcLibDeinitialize(void) {
    return g_Mbmcsupport == ACCESS_IMB ? endIPMI() : 0;
}
