// SDR records that locate FRU inventory (IPMI 2.0, section 43), and the state of a scan.
#pragma once

#include "frudata/types.h"

#include <memory>
#include <span>

namespace Frudata_Private {

/// The locators among the record types.
constexpr UINT8 SDR_TYPE_FRU_LOCATOR = 0x11;
constexpr UINT8 SDR_TYPE_MC_LOCATOR = 0x12;

constexpr UINTN SDR_HEADER_LENGTH = 5;
/// Bytes of the longest record, header included: offsets into a record have 8 bits.
constexpr UINTN SDR_RECORD_SIZE = 255;
constexpr UINTN SDR_ID_STRING_SIZE = 18;

struct RECHDR {
    UINT16 recordId; ///< informational. Compatibility: bytes in reverse order
    UINT8 sdrVersion;
    UINT8 recordType;
    UINT8 recordLength; ///< bytes after the header
};

/// FRU Device Locator record (section 43.8).
struct TYPE11V15 {
    RECHDR header;
    UINT8 deviceAccessAddress;
    UINT8 fruDeviceId;   ///< device ID of a logical device, else a slave address
    UINT8 logicalDevice; ///< 0 or 0x80
    UINT8 accessLun;
    UINT8 privateBusId;
    UINT8 accessLunBusId;
    UINT8 channelNumber;
    UINT8 reserved;
    UINT8 deviceType;
    UINT8 deviceTypeModifier;
    UINT8 fruEntityId;
    UINT8 fruEntityInstance;
    UINT8 oem;
    UINT8 idStringType;
    UINT8 idStringLength;
    UINT8 idStringTypeLength;
    char idString[SDR_ID_STRING_SIZE];
};

/// Management Controller Device Locator record (section 43.9). Flags keep their place in the byte.
struct TYPE12V15 {
    RECHDR header;
    UINT8 deviceSlaveAddress;
    UINT8 channelNumber;
    UINT8 acpiSystemPowerNotify;
    UINT8 acpiDevicePowerNotify;
    UINT8 reservedPowerBit;
    UINT8 logInitAgentErrors;
    UINT8 initAgentMode;
    UINT8 powerStateInit;
    UINT8 chassisDevice;
    UINT8 bridge;
    UINT8 eventGenerator;
    UINT8 eventReceiver;
    UINT8 fruInventoryDevice;
    UINT8 selDevice;
    UINT8 sdrRepositoryDevice;
    UINT8 sensorDevice;
    UINT8 deviceCapabilities;
    UINT8 reserved[3];
    UINT8 entityId;
    UINT8 entityInstance;
    UINT8 oem;
    UINT8 idStringType;
    UINT8 idStringLength;
    UINT8 idStringTypeLength;
    char idString[SDR_ID_STRING_SIZE];
};

constexpr UINTN SDR_SUPPORTED_TYPES = 10;
/// Places of the decoded types in the list of supported ones.
constexpr UINTN SDR_INDEX_FRU_LOCATOR = 5;
constexpr UINTN SDR_INDEX_MC_LOCATOR = 6;

/// State of one scan.
struct SDR_TYPE {
    std::unique_ptr<TYPE11V15[]> fruLocators;
    std::unique_ptr<TYPE12V15[]> mcLocators;
    UINT16 totalBytes = 0;                      ///< of the decoded records, headers included
    UINT32 recordCount = 0;                     ///< records that the counting pass saw
    UINT32 typeCount[SDR_SUPPORTED_TYPES] = {}; ///< records of each type decoded so far
    UINT8 supportedTypes[SDR_SUPPORTED_TYPES] = {};
    UINT32 fruCapacity = 0; ///< room in fruLocators
    UINT32 mcCapacity = 0;  ///< room in mcLocators
};

/// Releases the arrays that hold a record. Completes the interface; the library does not call it, since a scan releases
/// what the last one left. @return 0
EFI_STATUS SDR_MEM_Free(SDR_TYPE& sdr);

/// Decode a record's header. `raw` is the record as read, whatever its length byte says.
/// @return 0, SDR_BAD_HEADER_LENGTH, SDR_BAD_VERSION
EFI_STATUS DecodeHeader(std::span<const UINT8> raw, RECHDR& header);
/// Decode a record. @return as DecodeHeader, or SDR_BAD_RECORD_LENGTH
EFI_STATUS DecodeSDRType11V15(std::span<const UINT8> raw, TYPE11V15& record);
EFI_STATUS DecodeSDRType12V15(std::span<const UINT8> raw, TYPE12V15& record);

} // namespace Frudata_Private
