#include "sim/messagequeue.h"

#include "sim/simulatedbmc.h"

namespace Frudata_Sim {

namespace {

/// Positions in a Send Message: the channel byte, then the frame.
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

} // namespace

std::optional<BridgedRequest> ParseSendMessage(const BYTES& data) {
    if (data.size() < SMALLEST)
        return std::nullopt;
    BridgedRequest bridged;
    bridged.channel = data[CHANNEL] & 0x0F;
    bridged.responder = data[RESPONDER];
    bridged.requester = data[REQUESTER];
    bridged.requesterLun = data[SEQUENCE_REQUESTER_LUN] & 0x03;
    bridged.sequence = data[SEQUENCE_REQUESTER_LUN] >> 2;
    // Bytes and their checksum sum to 0, so the checksum over both is 0.
    bridged.checksumsGood = ZeroChecksum(&data[RESPONDER], REQUESTER - RESPONDER) == 0 &&
                            ZeroChecksum(&data[REQUESTER], data.size() - REQUESTER) == 0;
    bridged.request.netFn = data[NETFN_RESPONDER_LUN] >> 2;
    bridged.request.lun = data[NETFN_RESPONDER_LUN] & 0x03;
    bridged.request.cmd = data[COMMAND];
    bridged.request.data.assign(data.begin() + FIRST_DATA, data.end() - 1);
    return bridged;
}

BYTES FrameAnswer(const BridgedRequest& request, const IpmiAnswer& answer, UINT8 sequence) {
    // The requester's address opens the frame on the bus and counts in its checksum, but Get Message leaves it out.
    const UINT8 head[] = {request.requester,
                          static_cast<UINT8>((request.request.netFn + 1) << 2 | request.requesterLun)};
    BYTES message{request.channel,
                  head[1],
                  ZeroChecksum(head, 2),
                  request.responder,
                  static_cast<UINT8>(sequence << 2 | request.request.lun),
                  request.request.cmd,
                  answer.completionCode};
    Append(message, answer.data);
    message.push_back(ZeroChecksum(&message[3], message.size() - 3));
    return message;
}

void CMessageQueue::Push(BYTES message) {
    if (m_messages.size() < CAPACITY)
        m_messages.push_back(std::move(message));
}

IpmiAnswer CMessageQueue::Take() {
    if (m_messages.empty())
        return {.completionCode = CC_MESSAGE_QUEUE_EMPTY, .data = {}};
    IpmiAnswer answer{.data = std::move(m_messages.front())};
    m_messages.pop_front();
    return answer;
}

} // namespace Frudata_Sim
