#include "drivers/openipmi/bridge.h"

#include <cstring>

namespace Frudata_OpenIpmi {

void CBridge::Begin(const Frudata_Driver::BRIDGED_REQUEST& request, long id) {
    m_request = request;
    m_request.data = {};
    m_id = id;
    m_isAnswered = false;
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
    if (m_answer.isCut || m_answer.length == 0)
        return 0;
    const std::span answer(m_answer.bytes, m_answer.length);
    return Frudata_Driver::FrameBridgedAnswer(m_request, answer.front(), answer.subspan(1), room);
}

} // namespace Frudata_OpenIpmi
