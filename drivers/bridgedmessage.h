// Send Message and Get Message (IPMI 2.0, sections 22.6 and 22.7) as bytes, for drivers that do not own the BMC's
// message queue: they unpack the request of a Send Message and frame its answer as Get Message does.
#pragma once

#include "frudata/types.h"

#include <cstddef>
#include <span>

namespace Frudata_Driver {

constexpr UINT8 NETFN_APPLICATION = 0x06;
constexpr UINT8 COMMAND_GET_MESSAGE = 0x33;
constexpr UINT8 COMMAND_SEND_MESSAGE = 0x34;

constexpr UINT8 COMPLETION_SUCCESS = 0x00;
/// Get Message: the queue is empty.
constexpr UINT8 COMPLETION_NO_MESSAGE = 0x80;
/// Send Message: nobody at the address acknowledged it.
constexpr UINT8 COMPLETION_NOT_ACKNOWLEDGED = 0x83;
constexpr UINT8 COMPLETION_NODE_BUSY = 0xC0;
constexpr UINT8 COMPLETION_TIMEOUT = 0xC3;
constexpr UINT8 COMPLETION_BAD_LENGTH = 0xC7;
constexpr UINT8 COMPLETION_INVALID_FIELD = 0xCC;

/// The request on the IPMB that a Send Message carries.
struct BRIDGED_REQUEST {
    UINT8 channel = 0;             ///< 0 to 15, without the bits for tracking, encryption and authentication
    UINT8 responder = 0;           ///< slave address of the controller
    UINT8 netFn = 0;               ///< without the LUN
    UINT8 lun = 0;                 ///< of the controller
    UINT8 requester = 0;           ///< slave address that the answer goes to
    UINT8 requesterLun = 0;        ///< LUN that the answer goes to
    UINT8 sequence = 0;            ///< 0 to 63
    UINT8 cmd = 0;                 ///< command
    std::span<const UINT8> data{}; ///< request data, inside the unpacked message
};

/**
 * Unpacks `data`, the request data of a Send Message.
 * @return COMPLETION_SUCCESS; COMPLETION_BAD_LENGTH where it ends before its last checksum;
 *         COMPLETION_INVALID_FIELD where a checksum is wrong. `request` is then untouched
 */
UINT8 ParseSendMessage(std::span<const UINT8> data, BRIDGED_REQUEST& request);

/// Bytes that the framing adds to the answer's data, completion code included.
constexpr std::size_t BRIDGED_FRAME_SIZE = 8;

/**
 * Writes the answer to `request` as the data of a Get Message response, whose own completion code is not among them:
 * channel, netFn/LUN, checksum, responder, sequence/LUN, command, `completionCode`, `data`, checksum.
 * @return its length, BRIDGED_FRAME_SIZE more than `data` has; 0 where `room` does not suffice, which is then untouched
 */
std::size_t FrameBridgedAnswer(const BRIDGED_REQUEST& request, UINT8 completionCode, std::span<const UINT8> data,
                               std::span<UINT8> room);

} // namespace Frudata_Driver
