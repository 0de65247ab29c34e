// Numbers of IPMI requests and of their answers (IPMI 2.0, section 5 and appendix G).
#pragma once

#include "frudata/types.h"

namespace Frudata_Private {

/// Slave address of the BMC.
inline constexpr UINT8 BMC_ADDRESS = 0x20;
/// The bus of a device that is on none.
inline constexpr UINT8 NO_BUS = 0xFF;

inline constexpr UINT8 NETFN_APPLICATION = 0x06;
inline constexpr UINT8 NETFN_FIRMWARE = 0x08;
inline constexpr UINT8 NETFN_STORAGE = 0x0A;

/// Commands of NETFN_APPLICATION.
inline constexpr UINT8 COMMAND_GET_DEVICE_ID = 0x01;
inline constexpr UINT8 COMMAND_GET_MESSAGE = 0x33;
inline constexpr UINT8 COMMAND_SEND_MESSAGE = 0x34;
inline constexpr UINT8 COMMAND_MASTER_WRITE_READ = 0x52;
/// Commands of NETFN_STORAGE.
inline constexpr UINT8 COMMAND_GET_FRU_AREA_INFO = 0x10;
inline constexpr UINT8 COMMAND_READ_FRU_DATA = 0x11;
inline constexpr UINT8 COMMAND_WRITE_FRU_DATA = 0x12;
inline constexpr UINT8 COMMAND_RESERVE_SDR_REPOSITORY = 0x22;
inline constexpr UINT8 COMMAND_GET_SDR = 0x23;

inline constexpr UINT8 COMPLETION_SUCCESS = 0x00;
inline constexpr UINT8 COMPLETION_NO_MESSAGE = 0x80;     ///< of Get Message
inline constexpr UINT8 COMPLETION_FRU_BUSY = 0x81;       ///< of Read and Write FRU Data
inline constexpr UINT8 COMPLETION_BUS_BUSY = 0x83;       ///< of Send Message
inline constexpr UINT8 COMPLETION_NO_ACKNOWLEDGE = 0x83; ///< of Master Write-Read
inline constexpr UINT8 COMPLETION_NODE_BUSY = 0xC0;
inline constexpr UINT8 COMPLETION_BAD_LENGTH = 0xC7;
inline constexpr UINT8 COMPLETION_FIELD_TOO_LONG = 0xC8;
inline constexpr UINT8 COMPLETION_CANNOT_RETURN_COUNT = 0xCA;

/// Place of the IPMI version in the answer to Get Device ID (section 20.1). BCD, the minor digit first.
inline constexpr UINTN DEVICE_ID_IPMI_VERSION = 4;

} // namespace Frudata_Private
