// The address of a FRU device, and its text.
#pragma once

#include "common/ipmi.h"
#include "frudata/frudata.h"

#include <string>

namespace Fructl {

/// The address of a FRU device.
struct ADDRESS {
    FRU_TYPE type = FRU_TYPE_IMBDEVICE;
    UINT8 lun = 0;
    UINT8 deviceAddress = Frudata_Private::BMC_ADDRESS;
    UINT8 bus = Frudata_Private::NO_BUS;
    UINT8 controller = Frudata_Private::BMC_ADDRESS;
    UINT8 deviceId = 0;
    UINT8 mbmcSizeData = 0xFF;
    UINT16 mbmcSizeAddress = 0;
};

/// Reads "type=imb,address=0x20,...". @throws CToolError for an unknown key or value
ADDRESS ParseAddress(const std::string& text);
/// The same form, without usual values.
std::string AddressText(const ADDRESS& address);
/// The name of an access path as FRU text files have it.
const char* TypeText(FRU_TYPE type);

} // namespace Fructl
