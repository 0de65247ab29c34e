#include "drivers/openipmi/bridge.h"

#include <cstring>
#include <numeric>

namespace Frudata_OpenIpmi {

namespace {

// Positions in the data of Send Message: the channel, then the frame on the bus (IPMI 2.0, section 22.7).
enum : std::size_t {
    CHANNEL,
    RESPONDER,
    NETFN_RESPONDER_LUN,
    HEADER_CHECKSUM,
    REQUESTER,
    SEQUENCE_REQUESTER_LUN,
    COMMAND,
    FIRST_DATA,
    LEAST_LENGTH = FIRST_DATA + 1
};

// The same of Get Message (section 22.6): without the requester's address, which opens the frame on the bus.
enum : std::size_t {
    ANSWER_CHANNEL,
    ANSWER_NETFN_REQUESTER_LUN,
    ANSWER_HEADER_CHECKSUM,
    ANSWER_RESPONDER,
    ANSWER_SEQUENCE_RESPONDER_LUN,
    ANSWER_COMMAND,
    ANSWER_COMPLETION_CODE
};

// The remaining bits of the channel's byte tell of tracking and encryption.
constexpr UINT8 CHANNEL_MASK = 0x0F;
constexpr UINT8 LUN_MASK = 0x03;
constexpr UINT8 RESPONSE_BIT = 0x04; // of the network function, beside the LUN

/// What makes the sum of the bytes and itself 0. @return 0 where they hold their checksum already
UINT8 Checksum(std::span<const UINT8> bytes) {
    return static_cast<UINT8>(-std::accumulate(bytes.begin(), bytes.end(), 0));
}

} // namespace

UINT8 CBridge::Parse(std::span<const UINT8> message, DESTINATION& destination, REQUEST& request) {
    if (message.size() < LEAST_LENGTH)
        return CC_BAD_LENGTH;
    // A controller drops such a frame without a word: whoever built it is better told.
    if (Checksum(message.subspan(RESPONDER, REQUESTER - RESPONDER)) != 0 || Checksum(message.subspan(REQUESTER)) != 0)
        return CC_INVALID_FIELD;
    m_channel = message[CHANNEL] & CHANNEL_MASK;
    m_responder = message[RESPONDER];
    m_netFnAndLun = message[NETFN_RESPONDER_LUN];
    m_requester = message[REQUESTER];
    m_sequenceAndLun = message[SEQUENCE_REQUESTER_LUN];
    m_command = message[COMMAND];
    destination.isOnIpmb = true;
    destination.channel = m_channel;
    destination.address = m_responder;
    destination.lun = m_netFnAndLun & LUN_MASK;
    request.netFn = m_netFnAndLun >> 2;
    request.cmd = m_command;
    request.data = message.subspan(FIRST_DATA, message.size() - LEAST_LENGTH);
    return CC_SUCCESS;
}

void CBridge::Begin(long id) {
    m_id = id;
    m_isAnswered = false;
}

void CBridge::End() {
    Begin(0);
}

void CBridge::Keep(const ANSWER& answer) {
    if (!IsWaiting() || answer.id != m_id)
        return;
    m_answer.isCut = answer.isCut;
    m_answer.length = answer.length;
    std::memcpy(m_answer.bytes, answer.bytes, answer.length);
    m_isAnswered = true;
}

std::size_t CBridge::Frame(std::span<UINT8> room) const {
    const std::size_t end = ANSWER_COMPLETION_CODE + m_answer.length;
    if (m_answer.isCut || m_answer.length == 0 || room.size() <= end)
        return 0;
    const UINT8 netFnAndLun =
        static_cast<UINT8>(((m_netFnAndLun & ~LUN_MASK) | RESPONSE_BIT) | (m_sequenceAndLun & LUN_MASK));
    const UINT8 head[] = {m_requester, netFnAndLun};
    room[ANSWER_CHANNEL] = m_channel;
    room[ANSWER_NETFN_REQUESTER_LUN] = netFnAndLun;
    room[ANSWER_HEADER_CHECKSUM] = Checksum(head);
    room[ANSWER_RESPONDER] = m_responder;
    room[ANSWER_SEQUENCE_RESPONDER_LUN] =
        static_cast<UINT8>((m_sequenceAndLun & ~LUN_MASK) | (m_netFnAndLun & LUN_MASK));
    room[ANSWER_COMMAND] = m_command;
    std::memcpy(&room[ANSWER_COMPLETION_CODE], m_answer.bytes, m_answer.length);
    room[end] = Checksum(room.subspan(ANSWER_RESPONDER, end - ANSWER_RESPONDER));
    return end + 1;
}

} // namespace Frudata_OpenIpmi
