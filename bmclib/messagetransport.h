// Limits and helpers of the library's own requests.
#pragma once

#include "common/ipmi.h"
#include "frudata/bmclib.h"

namespace Frudata_Private {

/// Time-out of every request, in milliseconds.
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

/// ProcessMessage for a response record that nothing else writes to. Clears only the first `used` bytes; the
/// rest must already be 0. On return: the bytes that the answer may have written.
int ProcessReusedMessage(const BMC_MESSAGE& request, BMC_MESSAGE& response, unsigned int timeout, UINT32& used);

} // namespace Frudata_Private
