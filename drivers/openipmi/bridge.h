// The one request to a controller behind the BMC that is under way, and its answer.
#pragma once

#include "drivers/bridgedmessage.h"
#include "drivers/openipmi/device.h"

#include <span>

namespace Frudata_OpenIpmi {

class CBridge {
  public:
    /// `request` is under way as number `id`.
    void Begin(const Frudata_Driver::BRIDGED_REQUEST& request, long id);
    /// Forgets the request and its answer.
    void End() { Begin({}, 0); }

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
    /// As the answer repeats it, without its data.
    Frudata_Driver::BRIDGED_REQUEST m_request;
};

} // namespace Frudata_OpenIpmi
