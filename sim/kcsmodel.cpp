#include "sim/kcsmodel.h"

namespace Frudata_Sim {

namespace {

/// Control codes (IPMI 2.0, table 9-2).
enum : UINT8 {
    GET_STATUS_ABORT = 0x60,
    WRITE_START = 0x61,
    WRITE_END = 0x62,
    READ = 0x68
};

/// Interface status codes (IPMI 2.0, table 9-3).
enum : UINT8 {
    ABORTED_BY_COMMAND = 0x01,
    ILLEGAL_CONTROL_CODE = 0x02,
    LENGTH_ERROR = 0x06
};

constexpr UINT8 NO_PORT = 0xFF;
constexpr UINT8 DUMMY = 0x00;
constexpr UINT8 RESPONSE = 0x04; ///< the network function's response bit, above the LUN

/// State bits that each phase shows, in the order of PHASE.
constexpr UINT8 STATE_BITS[] = {KCS_IDLE, KCS_WRITE, KCS_WRITE, KCS_READ, KCS_ERROR, KCS_READ, KCS_ERROR};

} // namespace

UINT8 CKcsModel::ReadPort(UINT16 port) {
    if (port == m_options.basePort)
        return ReadData();
    return port == m_options.basePort + 1 ? ReadStatus() : NO_PORT;
}

void CKcsModel::WritePort(UINT8 value, UINT16 port) {
    const bool isCommand = port == m_options.basePort + 1;
    if (!isCommand && port != m_options.basePort)
        return;
    ++(isCommand ? m_counts.commandWrites : m_counts.dataWrites);
    if (m_inputBusy > 0)
        ++m_counts.violations;
    m_inputBusy = m_options.notReadyPolls;
    isCommand ? TakeCommand(value) : TakeData(value);
}

UINT8 CKcsModel::ReadStatus() {
    ++m_counts.statusReads;
    UINT8 status = STATE_BITS[static_cast<std::size_t>(m_phase)];
    if (m_inputBusy > 0) {
        --m_inputBusy;
        status |= KCS_IBF;
    } else if (m_outputFull && m_outputDelay > 0) {
        --m_outputDelay;
    } else if (m_outputFull) {
        status |= KCS_OBF;
    }
    if (m_bmc.HasMessage())
        status |= KCS_SMS_ATN;
    return static_cast<UINT8>((status | m_options.stuckSet) & ~m_options.stuckClear);
}

UINT8 CKcsModel::ReadData() {
    ++m_counts.dataReads;
    if (!m_outputFull || m_outputDelay > 0)
        ++m_counts.violations;
    m_outputFull = false;
    return m_output;
}

void CKcsModel::TakeCommand(UINT8 command) {
    m_outputFull = false;
    switch (command) {
    case WRITE_START:
        m_request.clear();
        Enter(PHASE::WRITE);
        if (m_options.errorOnWriteStart)
            EnterError();
        break;
    case WRITE_END:
        m_phase == PHASE::WRITE ? Enter(PHASE::WRITE_LAST) : EnterError(ILLEGAL_CONTROL_CODE);
        break;
    case GET_STATUS_ABORT:
        ++m_counts.aborts;
        if (m_phase != PHASE::ERROR)
            m_errorCode = ABORTED_BY_COMMAND;
        m_phase = PHASE::ABORT_STATUS;
        break;
    default:
        EnterError(ILLEGAL_CONTROL_CODE);
    }
}

void CKcsModel::TakeData(UINT8 value) {
    switch (m_phase) {
    case PHASE::WRITE:
        m_request.push_back(value);
        Enter(PHASE::WRITE);
        break;
    case PHASE::WRITE_LAST:
        m_request.push_back(value);
        Answer();
        break;
    case PHASE::READ:
        value == READ ? PutNextByte() : EnterError(ILLEGAL_CONTROL_CODE);
        break;
    case PHASE::ABORT_STATUS:
        m_phase = PHASE::ABORT_END;
        PutByte(m_errorCode);
        break;
    case PHASE::ABORT_END:
        m_phase = PHASE::IDLE;
        PutByte(DUMMY);
        break;
    default:
        EnterError(ILLEGAL_CONTROL_CODE);
    }
}

void CKcsModel::Answer() {
    if (m_request.size() < 2) {
        EnterError(LENGTH_ERROR);
        return;
    }
    const IpmiRequest request{.netFn = static_cast<UINT8>(m_request[0] >> 2),
                              .lun = static_cast<UINT8>(m_request[0] & 0x03),
                              .cmd = m_request[1],
                              .data = BYTES(m_request.begin() + 2, m_request.end())};
    const IpmiAnswer answer = m_bmc.Execute(request, FRONT::KCS);
    if (answer.delivery == DELIVERY::TRANSPORT_ERROR) {
        EnterError();
        return;
    }
    m_phase = PHASE::READ;
    m_answerPosition = 0;
    m_outputFull = false;
    if (answer.delivery == DELIVERY::SILENCE)
        return;
    m_answer = {static_cast<UINT8>(m_request[0] | RESPONSE), request.cmd, answer.completionCode};
    Append(m_answer, answer.data);
    PutNextByte();
}

void CKcsModel::PutNextByte() {
    if (m_options.errorAfterBytes > 0 && m_answerPosition == m_options.errorAfterBytes) {
        EnterError();
    } else if (m_answerPosition < m_answer.size()) {
        PutByte(m_answer[m_answerPosition++]);
    } else {
        m_phase = PHASE::IDLE;
        PutByte(DUMMY);
    }
}

void CKcsModel::PutByte(UINT8 value) {
    m_output = value;
    m_outputFull = true;
    m_outputDelay = m_options.notReadyOutput;
}

/// Enters a phase of the write transfer, in which a BMC may show a byte that means nothing.
void CKcsModel::Enter(PHASE phase) {
    m_phase = phase;
    if (m_options.outputWhileWriting)
        PutByte(DUMMY);
}

void CKcsModel::EnterError(UINT8 code) {
    m_phase = PHASE::ERROR;
    m_errorCode = code;
    m_outputFull = false;
}

} // namespace Frudata_Sim
