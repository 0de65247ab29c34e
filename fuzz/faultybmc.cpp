#include "fuzz/support.h"

#include <algorithm>

namespace Frudata_Fuzz {

namespace {

using namespace Frudata_Sim;

/// Instructions of the fault stream: the low three bits of a byte. The others are its number.
enum FAULT : UINT8 {
    FAULT_NONE,            ///< number + 1 true answers
    FAULT_DATA,            ///< success with `number` bytes of the stream
    FAULT_COMPLETION_CODE, ///< a completion code from the stream, then `number` bytes of it
    FAULT_TRANSPORT,       ///< a transport status from the stream
    FAULT_LONG,            ///< the true answer, followed by many bytes
    FAULT_SHORT,           ///< the true answer less `number` bytes
    FAULT_CHANGED          ///< the true answer with another value at byte `number`
};

/// More requests than any image and repository need.
constexpr unsigned int MOST_ANSWERS = 1500;

} // namespace

CFaultyBmc::CFaultyBmc(CInput& faults) : m_faults(faults) {
    m_bmc.SetScript([this](const IpmiRequest& request) { return Answer(request); });
    SetCurrentBmc(&m_bmc);
}

IpmiAnswer CFaultyBmc::Answer(const IpmiRequest& request) {
    if (++m_answers > MOST_ANSWERS)
        return {.data = {}, .delivery = DELIVERY::TRANSPORT_ERROR, .transportStatus = 1};
    const UINT8 instruction = m_trueAnswers > 0 || m_faults.IsEmpty() ? UINT8{FAULT_NONE} : m_faults.Byte();
    const unsigned int number = instruction >> 3;
    if ((instruction & 7) == FAULT_TRANSPORT)
        return {.data = {}, .delivery = DELIVERY::TRANSPORT_ERROR, .transportStatus = m_faults.Byte()};
    IpmiAnswer answer = m_bmc.Handle(request, true);
    switch (instruction & 7) {
    case FAULT_NONE:
        m_trueAnswers = m_trueAnswers > 0 ? m_trueAnswers - 1 : number;
        break;
    case FAULT_COMPLETION_CODE:
        answer.completionCode = m_faults.Byte();
        answer.data = m_faults.Take(number);
        break;
    case FAULT_DATA:
        answer = {.data = m_faults.Take(number)};
        break;
    case FAULT_LONG:
        answer.data.resize(answer.data.size() + 64 * number * number, 0xEE);
        break;
    case FAULT_SHORT:
        answer.data.resize(answer.data.size() - std::min<std::size_t>(answer.data.size(), number));
        break;
    default:
        answer.data.resize(std::max<std::size_t>(answer.data.size(), number + 1));
        answer.data[number] = m_faults.Byte();
    }
    return answer;
}

} // namespace Frudata_Fuzz
