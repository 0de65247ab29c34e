#include "drivers/bridgedmessage.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace Frudata_Driver {

namespace {

/// Positions in the data of a Send Message: the channel, then the frame.
enum : std::size_t {
    CHANNEL,
    RESPONDER,
    NETFN_RESPONDER_LUN,
    HEADER_CHECKSUM,
    REQUESTER,
    SEQUENCE_REQUESTER_LUN,
    COMMAND,
    FIRST_DATA,
    SMALLEST = FIRST_DATA + 1
};

/// Positions in the data of a Get Message response.
constexpr std::size_t ANSWER_RESPONDER = 3;

/// The byte that makes the sum of the bytes 0 modulo 256.
UINT8 ZeroChecksum(std::span<const UINT8> bytes) {
    return static_cast<UINT8>(-std::accumulate(bytes.begin(), bytes.end(), 0));
}

} // namespace

UINT8 ParseSendMessage(std::span<const UINT8> data, BRIDGED_REQUEST& request) {
    if (data.size() < SMALLEST)
        return COMPLETION_BAD_LENGTH;
    // Bytes and their checksum sum to 0, so the checksum over both is 0.
    if (ZeroChecksum(data.subspan(RESPONDER, REQUESTER - RESPONDER)) != 0 || ZeroChecksum(data.subspan(REQUESTER)) != 0)
        return COMPLETION_INVALID_FIELD;
    request.channel = data[CHANNEL] & 0x0F;
    request.responder = data[RESPONDER];
    request.netFn = data[NETFN_RESPONDER_LUN] >> 2;
    request.lun = data[NETFN_RESPONDER_LUN] & 0x03;
    request.requester = data[REQUESTER];
    request.requesterLun = data[SEQUENCE_REQUESTER_LUN] & 0x03;
    request.sequence = data[SEQUENCE_REQUESTER_LUN] >> 2;
    request.cmd = data[COMMAND];
    request.data = data.subspan(FIRST_DATA, data.size() - SMALLEST);
    return COMPLETION_SUCCESS;
}

std::size_t FrameBridgedAnswer(const BRIDGED_REQUEST& request, UINT8 completionCode, std::span<const UINT8> data,
                               std::span<UINT8> room) {
    if (room.size() < BRIDGED_FRAME_SIZE || room.size() - BRIDGED_FRAME_SIZE < data.size())
        return 0;
    // The requester's address opens the frame on the bus and counts in its checksum, but Get Message leaves it out.
    const UINT8 head[] = {request.requester, static_cast<UINT8>((request.netFn | 1) << 2 | request.requesterLun)};
    const UINT8 opening[] = {request.channel,
                             head[1],
                             ZeroChecksum(head),
                             request.responder,
                             static_cast<UINT8>(request.sequence << 2 | request.lun),
                             request.cmd,
                             completionCode};
    static_assert(std::size(opening) + 1 == BRIDGED_FRAME_SIZE);
    const auto end =
        std::copy(data.begin(), data.end(), std::copy(std::begin(opening), std::end(opening), room.begin()));
    const std::size_t length = BRIDGED_FRAME_SIZE - 1 + data.size();
    *end = ZeroChecksum(room.first(length).subspan(ANSWER_RESPONDER));
    return length + 1;
}

} // namespace Frudata_Driver
