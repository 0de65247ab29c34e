// Requests and answers as the simulated controllers see them, free of any transport's framing.
#pragma once

#include "frudata/types.h"

#include <cstddef>
#include <span>
#include <vector>

namespace Frudata_Sim {

using BYTES = std::vector<UINT8>;

/// Network functions of requests (IPMI 2.0, section 5.1).
enum : UINT8 {
    NETFN_APP = 0x06,
    NETFN_STORAGE = 0x0A
};

/// Commands that the simulated controllers know (IPMI 2.0, appendix G).
enum : UINT8 {
    CMD_GET_DEVICE_ID = 0x01,
    CMD_CLEAR_MESSAGE_FLAGS = 0x30,
    CMD_GET_MESSAGE_FLAGS = 0x31,
    CMD_GET_MESSAGE = 0x33,
    CMD_SEND_MESSAGE = 0x34,
    CMD_MASTER_WRITE_READ = 0x52,
    CMD_GET_FRU_AREA_INFO = 0x10,
    CMD_READ_FRU_DATA = 0x11,
    CMD_WRITE_FRU_DATA = 0x12,
    CMD_GET_SDR_REPOSITORY_INFO = 0x20,
    CMD_RESERVE_SDR_REPOSITORY = 0x22,
    CMD_GET_SDR = 0x23
};

/// Completion codes (IPMI 2.0, section 5.2, and the commands' own).
enum : UINT8 {
    CC_SUCCESS = 0x00,
    CC_MESSAGE_QUEUE_EMPTY = 0x80,    ///< Get Message
    CC_WRITE_PROTECTED_OFFSET = 0x80, ///< Write FRU Data
    CC_NAK_ON_WRITE = 0x83,           ///< Send Message, Master Write-Read
    CC_NODE_BUSY = 0xC0,
    CC_INVALID_COMMAND = 0xC1,
    CC_INVALID_LUN = 0xC2,
    CC_RESERVATION_CANCELLED = 0xC5,
    CC_BAD_LENGTH = 0xC7,
    CC_LENGTH_LIMIT_EXCEEDED = 0xC8,
    CC_OUT_OF_RANGE = 0xC9,
    CC_CANNOT_RETURN_BYTES = 0xCA,
    CC_NOT_PRESENT = 0xCB,
    CC_INVALID_FIELD = 0xCC,
    CC_UNSPECIFIED = 0xFF
};

/// One request to one controller.
struct IpmiRequest {
    UINT8 netFn = 0; ///< without the LUN
    UINT8 lun = 0;
    UINT8 cmd = 0;
    BYTES data;
};

/// Whether an answer comes back at all.
enum class DELIVERY {
    ANSWERED,
    TRANSPORT_ERROR, ///< the transport reports a failure
    SILENCE          ///< nothing ever comes back
};

/// The answer to one request.
struct IpmiAnswer {
    UINT8 completionCode = CC_SUCCESS;
    BYTES data; ///< without the completion code
    DELIVERY delivery = DELIVERY::ANSWERED;
    int transportStatus = 0; ///< with TRANSPORT_ERROR: what the IMB driver's function returns
};

/// The answer that refuses a request.
inline IpmiAnswer Refuse(UINT8 completionCode) {
    return {.completionCode = completionCode, .data = {}};
}

/// Two's complement of the 8-bit sum of `count` bytes: bytes and checksum sum to 0.
UINT8 ZeroChecksum(const UINT8* bytes, std::size_t count);
/// Appends `more` to `bytes`.
void Append(BYTES& bytes, std::span<const UINT8> more);

} // namespace Frudata_Sim
