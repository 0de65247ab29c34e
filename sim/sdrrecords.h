// Composes sensor data records (IPMI 2.0, section 43). Record ids are filled in by the repository.
#pragma once

#include "sim/ipmi.h"

#include <string_view>

namespace Frudata_Sim {

/// Device type codes of locators (IPMI 2.0, table 43-12).
enum : UINT8 {
    DEVICE_TYPE_DS1624 = 0x02,
    DEVICE_TYPE_EEPROM = 0x0E, ///< 24C32: two offset bytes
    DEVICE_TYPE_FRU = 0x10     ///< FRU inventory device behind a controller
};

/// Type 0x11 for a FRU inventory device with the id `fruId` of the controller at `controller`.
BYTES LogicalFruRecord(UINT8 controller, UINT8 channel, UINT8 fruId, std::string_view name);
/// Type 0x11 for an EEPROM at the 8-bit address `address` on private bus `bus` (0 to 7) of `controller`.
BYTES PhysicalFruRecord(UINT8 controller, UINT8 channel, UINT8 bus, UINT8 address, UINT8 deviceType,
                        std::string_view name);
/// Type 0x12 for the controller at `address` on `channel`. `capabilities` is byte 9 of the record.
BYTES ControllerRecord(UINT8 address, UINT8 channel, UINT8 capabilities, std::string_view name);
/// Type 0x01 (full) and 0x02 (compact): a temperature sensor.
BYTES FullSensorRecord(UINT8 sensor, std::string_view name);
BYTES CompactSensorRecord(UINT8 sensor, std::string_view name);
/// Type 0xC0: OEM data.
BYTES OemRecord(const BYTES& data);

} // namespace Frudata_Sim
