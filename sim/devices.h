// The two kinds of memory that hold FRU inventory: a FRU inventory device, which a controller reads and
// writes for its hosts, and a serial EEPROM on a bus, which hosts drive themselves with Master Write-Read.
#pragma once

#include "sim/storage.h"

namespace Frudata_Sim {

/// What a FRU inventory device allows (IPMI 2.0, section 34).
struct FruDeviceOptions {
    UINT8 maxRead = 32;                         ///< most bytes of one Read FRU Data
    UINT8 maxWrite = 32;                        ///< most bytes of one Write FRU Data
    UINT8 readRefusal = CC_CANNOT_RETURN_BYTES; ///< answer to a count of 0 or above maxRead
    UINT8 writeRefusal = CC_BAD_LENGTH;         ///< answer to no bytes or more than maxWrite
    UINT8 failure = CC_SUCCESS;                 ///< a dead device: its answer to every command
    bool readOnly = false;                      ///< every write answers 0x80
    bool partialReads = false;                  ///< a read across the end gives what is there, not 0xC9
};

class CFruDevice {
  public:
    CFruDevice(CStorage storage, FruDeviceOptions options) : m_storage(std::move(storage)), m_options(options) {}

    const CStorage& Storage() const { return m_storage; }
    IpmiAnswer AreaInfo() const;
    IpmiAnswer Read(UINT16 offset, UINT8 count) const;
    /// With `store` false a write is checked and acknowledged but not done.
    IpmiAnswer Write(UINT16 offset, std::span<const UINT8> data, bool store);

  private:
    CStorage m_storage;
    FruDeviceOptions m_options;
};

/// How an EEPROM takes its address.
enum class EEPROM_KIND {
    AT24,   ///< two offset bytes, high byte first
    DS1624S ///< the access command 0x17, then one offset byte
};

/// What an EEPROM and the Master Write-Read in front of it allow (IPMI 2.0, section 22.11).
struct EepromOptions {
    UINT8 maxRead = 32;                         ///< most bytes of one read
    UINT8 maxWrite = 35;                        ///< most bytes of one write, offset bytes included
    UINT8 readRefusal = CC_CANNOT_RETURN_BYTES; ///< answer to a count above maxRead
    UINT8 writeRefusal = CC_BAD_LENGTH;         ///< answer to more than maxWrite bytes
    UINT8 pageSize = 0;                         ///< a write wraps inside its page of this size; 0: no pages
    UINT8 failure = CC_SUCCESS;                 ///< a dead device: its answer to every access
};

class CEeprom {
  public:
    /// `bus` is the bus byte of Master Write-Read exactly as hosts send it; `address` the 8-bit address.
    CEeprom(UINT8 bus, UINT8 address, EEPROM_KIND kind, CStorage storage, EepromOptions options)
        : m_bus(bus), m_address(address), m_kind(kind), m_storage(std::move(storage)), m_options(options) {}

    UINT8 Bus() const { return m_bus; }
    UINT8 Address() const { return m_address; }
    EEPROM_KIND Kind() const { return m_kind; }
    const CStorage& Storage() const { return m_storage; }
    /// One bus transaction: writes `data` (the offset bytes, then data to store), then reads `count` bytes
    /// from the address pointer on. The pointer runs on and wraps at the end of the memory.
    IpmiAnswer Transfer(std::span<const UINT8> data, UINT8 count, bool store);

  private:
    bool SetPointer(std::span<const UINT8>& data);
    bool Program(std::span<const UINT8> data);

    UINT8 m_bus;
    UINT8 m_address;
    EEPROM_KIND m_kind;
    CStorage m_storage;
    EepromOptions m_options;
    std::size_t m_pointer = 0;
};

} // namespace Frudata_Sim
