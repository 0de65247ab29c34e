// A request to a controller behind the BMC, in the frames of Send Message and Get Message.
#pragma once

#include "drivers/openipmi/device.h"

#include <span>

namespace Frudata_OpenIpmi {

/// Completion codes that the driver gives itself (IPMI 2.0, section 5.2; 0x80: section 22.6).
enum : UINT8 {
    CC_SUCCESS = 0x00,
    CC_NO_MESSAGE = 0x80,
    CC_BAD_LENGTH = 0xC7,
    CC_INVALID_FIELD = 0xCC
};

/// The one bridged request under way and its answer.
class CBridge {
  public:
    /// Reads the data of a Send Message; `request` then points into it.
    /// @return a completion code: CC_BAD_LENGTH without a whole frame, CC_INVALID_FIELD with a wrong checksum
    UINT8 Parse(std::span<const UINT8> message, DESTINATION& destination, REQUEST& request);
    /// The request parsed last is under way as number `id`.
    void Begin(long id);
    /// Forgets the request and its answer.
    void End();

    long Id() const { return m_id; }
    bool IsWaiting() const { return m_id != 0 && !m_isAnswered; }
    bool IsAnswered() const { return m_isAnswered; }
    /// Keeps the answer, if it is that of the request under way.
    void Keep(const ANSWER& answer);

    /// Writes the kept answer as the data of Get Message. @return its length, or 0 where `room` or the answer's own
    /// bytes do not suffice
    std::size_t Frame(std::span<UINT8> room) const;

  private:
    long m_id = 0;
    bool m_isAnswered = false;
    ANSWER m_answer;
    // As the answer repeats it.
    UINT8 m_channel = 0;
    UINT8 m_responder = 0;
    UINT8 m_netFnAndLun = 0;
    UINT8 m_requester = 0;
    UINT8 m_sequenceAndLun = 0;
    UINT8 m_command = 0;
};

} // namespace Frudata_OpenIpmi
