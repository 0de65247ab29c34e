// The FRU devices that the SDR repository names.
#pragma once

#include "tools/fructl/source.h"

#include <vector>

namespace Fructl {

/// The FRU devices that the SDR repository names, in its order. @throws CToolError where it cannot be read
std::vector<SOURCE> ScanDevices();
/// "type=...,bus=...,...", "eeprom=PATH", "system", the path of an EEPROM, or a name that the scan of the SDR
/// repository finds. @throws CToolError for any other text
SOURCE DeviceSource(const std::string& text);

} // namespace Fructl
