// The IPMI commands that the BMC layer itself sends (IPMI 2.0, sections 20 and 22).
#pragma once

#include "frudata/bmclib.h"

namespace Frudata_Private {

inline constexpr UINT8 BMC_ADDRESS = 0x20;
inline constexpr UINT8 NETFN_APPLICATION = 0x06;
inline constexpr UINT8 NETFN_FIRMWARE = 0x08;

inline constexpr UINT8 COMMAND_GET_DEVICE_ID = 0x01;
inline constexpr UINT8 COMMAND_GET_MESSAGE = 0x33;
inline constexpr UINT8 COMMAND_SEND_MESSAGE = 0x34;

/// Time-out that the library's own requests pass, in milliseconds.
inline constexpr unsigned int REQUEST_TIMEOUT = 5000;

/// Room for the data of one response, and size of one KCS frame, in bytes.
inline constexpr int RESPONSE_CAPACITY = 65535;
/// Most data bytes of one request: network function and command share its frame.
inline constexpr int REQUEST_CAPACITY = RESPONSE_CAPACITY - 2;

/// Makes `message` an application request to the BMC. The data bytes stay as they are.
inline void AddressToBmc(BMC_MESSAGE& message, UINT8 command, UINT32 dataLength) {
    message.rsSa = BMC_ADDRESS;
    message.netFn = NETFN_APPLICATION;
    message.lun = 0;
    message.cmd = command;
    message.dataLength = dataLength;
    message.completionCode = 0;
}

} // namespace Frudata_Private
