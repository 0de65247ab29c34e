// Numbers of the IPMI commands and completion codes that device access uses (IPMI 2.0, appendix G and 5.2).
#pragma once

#include "frudata/types.h"

namespace Frudata_Private {

constexpr UINT8 NETFN_APPLICATION = 0x06;
constexpr UINT8 NETFN_STORAGE = 0x0A;

constexpr UINT8 COMMAND_GET_DEVICE_ID = 0x01;
constexpr UINT8 COMMAND_MASTER_WRITE_READ = 0x52;
constexpr UINT8 COMMAND_READ_FRU_DATA = 0x11;
constexpr UINT8 COMMAND_WRITE_FRU_DATA = 0x12;
constexpr UINT8 COMMAND_RESERVE_SDR_REPOSITORY = 0x22;
constexpr UINT8 COMMAND_GET_SDR = 0x23;

constexpr UINT8 COMPLETION_SUCCESS = 0x00;
constexpr UINT8 COMPLETION_NODE_BUSY = 0xC0;
constexpr UINT8 COMPLETION_BAD_LENGTH = 0xC7;
constexpr UINT8 COMPLETION_FIELD_TOO_LONG = 0xC8;
constexpr UINT8 COMPLETION_CANNOT_RETURN_COUNT = 0xCA;

} // namespace Frudata_Private
