// The BMC's receive message queue and the framing of the messages in it (IPMI 2.0, sections 6.13 and 22.6).
#pragma once

#include "sim/ipmi.h"

#include <deque>
#include <optional>

namespace Frudata_Sim {

/// A request on an IPMB channel, from a Send Message.
struct BridgedRequest {
    UINT8 channel = 0;
    UINT8 responder = 0; ///< slave address of the controller asked
    UINT8 requester = 0;
    UINT8 requesterLun = 0;
    UINT8 sequence = 0;
    bool checksumsGood = false;
    IpmiRequest request;
};

/// Parses a Send Message's data. Nothing if it is shorter than a frame.
std::optional<BridgedRequest> ParseSendMessage(const BYTES& data);
/// The data of the Get Message answer that brings `answer`: channel, then the frame without the
/// requester's address, responder and requester in their swapped places.
BYTES FrameAnswer(const BridgedRequest& request, const IpmiAnswer& answer, UINT8 sequence);

class CMessageQueue {
  public:
    static constexpr std::size_t CAPACITY = 16;

    /// A full queue loses the message.
    void Push(BYTES message);
    bool IsEmpty() const { return m_messages.empty(); }
    void Clear() { m_messages.clear(); }
    /// Get Message.
    IpmiAnswer Take();

  private:
    std::deque<BYTES> m_messages;
};

} // namespace Frudata_Sim
