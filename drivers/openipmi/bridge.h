// The one pending request to a controller behind the BMC, and its answer.
#pragma once

#include "drivers/bridgedmessage.h"
#include "drivers/openipmi/device.h"

#include <span>

namespace Frudata_OpenIpmi {

/// Keeps one request and its answer at a time; a newer request takes the place of both.
class CBridge {
  public:
    /// `request` is pending as number `id`.
    void Begin(const Frudata_Driver::BRIDGED_REQUEST& request, long id);
    /// Forgets the request and its answer.
    void End() { Begin({}, 0); }

    /// @return 0 without a request
    long Id() const { return m_id; }
    bool IsWaiting() const { return m_id != 0 && !m_isAnswered; }
    bool IsAnswered() const { return m_isAnswered; }
    /// Keeps the answer if it belongs to the pending request.
    void Keep(const ANSWER& answer);

    /// Writes the kept answer as the data of Get Message. @return its length, or 0 if `room` or the answer's
    /// bytes do not suffice
    std::size_t Frame(std::span<UINT8> room) const;

  private:
    long m_id = 0;
    bool m_isAnswered = false;
    ANSWER m_answer;
    /// Without its data: the answer repeats the rest.
    Frudata_Driver::BRIDGED_REQUEST m_request;
};

} // namespace Frudata_OpenIpmi
