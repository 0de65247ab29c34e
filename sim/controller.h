// A management controller: an identity, FRU inventory devices and buses with EEPROMs. The BMC is one, the
// controllers behind it are others.
#pragma once

#include "sim/devices.h"

#include <deque>
#include <map>
#include <string>

namespace Frudata_Sim {

/// The answer to Get Device ID (IPMI 2.0, section 20.1).
struct DeviceIdentity {
    UINT8 deviceId = 0x20;
    UINT8 deviceRevision = 0x01;
    UINT8 firmwareMajor = 0x02;
    UINT8 firmwareMinor = 0x10;     ///< BCD
    UINT8 ipmiVersion = 0x02;       ///< BCD, minor digit in the high nibble: 0x02 is 2.0, 0x51 is 1.5
    UINT8 additionalSupport = 0x8B; ///< chassis, FRU inventory, SDR repository, sensors
    UINT32 manufacturer = 0x000157; ///< IANA number, 20 bits used
    UINT16 product = 0x0001;
};

class CManagementController {
  public:
    explicit CManagementController(DeviceIdentity identity = {}) : m_identity(identity) {}
    virtual ~CManagementController() = default;

    void SetIdentity(const DeviceIdentity& identity) { m_identity = identity; }
    const DeviceIdentity& Identity() const { return m_identity; }

    /// Adds a FRU inventory device, or replaces the one with this id.
    void AddFruDevice(UINT8 id, CStorage storage, FruDeviceOptions options = {});
    void AddFruDevice(UINT8 id, BYTES bytes, FruDeviceOptions options = {});
    /// Adds an EEPROM. `bus` is the bus byte of Master Write-Read exactly as hosts send it.
    void AddEeprom(UINT8 bus, UINT8 address, EEPROM_KIND kind, CStorage storage, EepromOptions options = {});
    void AddEeprom(UINT8 bus, UINT8 address, EEPROM_KIND kind, BYTES bytes, EepromOptions options = {});

    /// The bytes a device holds now. Throws std::out_of_range for an unknown device.
    const BYTES& FruBytes(UINT8 id) const;
    const BYTES& EepromBytes(UINT8 bus, UINT8 address) const;
    const std::map<UINT8, CFruDevice>& FruDevices() const { return m_fruDevices; }
    const std::deque<CEeprom>& Eeproms() const { return m_eeproms; }

    /// Executes one request to this controller. With `store` false a write is acknowledged but not done.
    virtual IpmiAnswer Handle(const IpmiRequest& request, bool store);

  private:
    IpmiAnswer GetDeviceId(const IpmiRequest& request) const;
    IpmiAnswer AccessFru(const IpmiRequest& request, bool store);
    IpmiAnswer MasterWriteRead(const IpmiRequest& request, bool store);

    DeviceIdentity m_identity;
    std::map<UINT8, CFruDevice> m_fruDevices;
    std::deque<CEeprom> m_eeproms;
};

} // namespace Frudata_Sim
