// Bridging (IPMI 2.0, sections 6.13, 22.6 and 22.7): a request to a controller behind the BMC goes out
// wrapped in Send Message, and its answer is fetched with Get Message. One attempt:
//
//   Send Message fails, or a completion code but 0   attempt failed (0x83, bus busy: after a second)
//   Send Message succeeds                            wait for SMS attention, then Get Message until
//     status not 0                                     attempt failed
//     firmware transfer exit                           done, the controller does not answer
//     0x00, our sequence number                        done, the answer; attempt failed where it is cut short
//     0x00, another sequence number or none (stale)    once more
//     0x80, no message yet                             once more, while the poll budget lasts
//     0x83, bus busy                                   once more
//     any other completion code                        attempt failed
#include "bmclib/kcsregisters.h"
#include "bmclib/messagetransport.h"
#include "common/bytesum.h"
#include "frudata/debug.h"

#include <cstring>
#include <unistd.h>

namespace {

using namespace Frudata_Private;

constexpr int ATTEMPTS = 5;
constexpr int FIRMWARE_ATTEMPTS = 23;
constexpr int POLLS = 100;
constexpr int PATIENT_POLLS = 1000;
// Stale answers and a busy bus do not count against the poll budget. This limit ends the polling of a BMC that sends
// nothing else. Sequence numbers tell 63 requests apart, so a working BMC queues far fewer stale answers.
constexpr int UNCOUNTED_POLLS = 4096;

constexpr UINT8 PANEL_ADDRESS = 0x22;
constexpr UINT8 PANEL_TRANSFER_EXIT = 0x04;

// A wrapped request: channel, target, netFn/LUN, checksum; requester, sequence/LUN, command, data, checksum.
constexpr UINT32 WRAPPING_SIZE = 8;
constexpr UINT8 REQUESTER_LUN = 2;

// An answer: channel, netFn/LUN, checksum, responder, sequence/LUN, command, completion code, data, checksum.
constexpr UINT32 ANSWER_NETFN = 1;
constexpr UINT32 ANSWER_RESPONDER = 3;
constexpr UINT32 ANSWER_SEQUENCE = 4;
constexpr UINT32 ANSWER_COMMAND = 5;
constexpr UINT32 ANSWER_COMPLETION_CODE = 6;
constexpr UINT32 ANSWER_DATA = 7;
constexpr UINT32 ANSWER_WRAPPING_SIZE = 8;

constexpr UINT8 LAST_SEQUENCE = 63;

// Sequence number of the next bridged request, 1 to LAST_SEQUENCE.
UINT8 sendSeq = 1;
// Set for good by the first busy bus: a crowded one takes longer to answer.
int incTestCount = 0;

enum POLL_OUTCOME {
    POLL_ANSWERED,
    POLL_NOTHING,
    POLL_NO_ANSWER_EXPECTED
};

// One bridged request. It lives on the stack of its call, with two messages of 64 KiB.
class CBridgedRequest {
  public:
    CBridgedRequest(const BMC_MESSAGE& request, UINT8 channel, UINT8 target);

    // Sends once and waits for the answer. `response` takes the answer to Send Message.
    POLL_OUTCOME Attempt(BMC_MESSAGE& response, int retryCount);
    void FillResponse(BMC_MESSAGE& response) const;

  private:
    enum VERDICT {
        VERDICT_STOP,
        VERDICT_AGAIN,
        VERDICT_AGAIN_COUNTED
    };

    POLL_OUTCOME PollForAnswer(int retryCount);
    VERDICT JudgeAnswer() const;
    bool HasOurSequence() const;
    bool IsAnswer() const;
    UINT8 AnswerSequence() const { return static_cast<UINT8>(m_Answer.data[ANSWER_SEQUENCE] >> 2); }
    void LogPolling(const wchar_t* prefix, int testCount, int retryCount, int status) const;

    const BMC_MESSAGE& m_Request;
    UINT8 m_Target;
    UINT32 m_WrappedSize;
    BMC_MESSAGE m_Message; // the wrapped request; Get Message has no data and leaves it in place
    BMC_MESSAGE m_Answer = {};
    UINT32 m_AnswerUsed = 0;
};

// m_Message is not initialised: clearing 64 KiB would cost more than the request.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
CBridgedRequest::CBridgedRequest(const BMC_MESSAGE& request, UINT8 channel, UINT8 target)
    : m_Request(request), m_Target(target), m_WrappedSize(request.dataLength + WRAPPING_SIZE) {
    UINT8* const data = m_Message.data;
    data[0] = channel;
    data[1] = target;
    data[2] = static_cast<UINT8>(request.netFn << 2 | (request.lun & 3));
    data[3] = ZeroChecksum(data + 1, 2);
    data[4] = BMC_ADDRESS;
    data[5] = static_cast<UINT8>(sendSeq << 2 | REQUESTER_LUN);
    data[6] = request.cmd;
    std::memcpy(data + 7, request.data, request.dataLength);
    data[7 + request.dataLength] = ZeroChecksum(data + 4, 3 + static_cast<int>(request.dataLength));
}

POLL_OUTCOME CBridgedRequest::Attempt(BMC_MESSAGE& response, int retryCount) {
    AddressToBmc(m_Message, COMMAND_SEND_MESSAGE, m_WrappedSize);
    if (ProcessMessage(&m_Message, &response, REQUEST_TIMEOUT) != 0)
        return POLL_NOTHING;
    if (response.completionCode == COMPLETION_BUS_BUSY) {
        sleep(1);
        incTestCount = 1;
    }
    if (response.completionCode != COMPLETION_SUCCESS)
        return POLL_NOTHING;
    wait_for_SMS_flag();
    return PollForAnswer(retryCount);
}

POLL_OUTCOME CBridgedRequest::PollForAnswer(int retryCount) {
    int testCount = incTestCount != 0 || m_Target == PANEL_ADDRESS ? PATIENT_POLLS : POLLS;
    int uncounted = UNCOUNTED_POLLS;
    int status = 0;
    AddressToBmc(m_Message, COMMAND_GET_MESSAGE, 0);
    for (VERDICT verdict = VERDICT_AGAIN; verdict != VERDICT_STOP;) {
        status = ProcessReusedMessage(m_Message, m_Answer, REQUEST_TIMEOUT, m_AnswerUsed);
        if (status != 0) {
            Dbg(L"Breaking after Getmsg Status is %d\n", 1, status);
            break;
        }
        if (m_Target == PANEL_ADDRESS && m_Request.cmd == PANEL_TRANSFER_EXIT) {
            LogPolling(L"Exit FW Xfer LCP -> ", testCount, retryCount, status);
            return POLL_NO_ANSWER_EXPECTED;
        }
        verdict = JudgeAnswer();
        int& budget = verdict == VERDICT_AGAIN_COUNTED ? testCount : uncounted;
        if (verdict != VERDICT_STOP && --budget < 1)
            verdict = VERDICT_STOP;
    }
    LogPolling(L"", testCount, retryCount, status);
    return status == 0 && IsAnswer() ? POLL_ANSWERED : POLL_NOTHING;
}

CBridgedRequest::VERDICT CBridgedRequest::JudgeAnswer() const {
    switch (m_Answer.completionCode) {
    case COMPLETION_BUS_BUSY:
        return VERDICT_AGAIN;
    case COMPLETION_NO_MESSAGE:
        return VERDICT_AGAIN_COUNTED;
    case COMPLETION_SUCCESS:
        return HasOurSequence() ? VERDICT_STOP : VERDICT_AGAIN;
    default:
        return VERDICT_STOP;
    }
}

bool CBridgedRequest::HasOurSequence() const {
    return m_Answer.dataLength > ANSWER_SEQUENCE && AnswerSequence() == sendSeq;
}

bool CBridgedRequest::IsAnswer() const {
    return m_Answer.completionCode == COMPLETION_SUCCESS && m_Answer.dataLength >= ANSWER_WRAPPING_SIZE &&
           HasOurSequence();
}

void CBridgedRequest::LogPolling(const wchar_t* prefix, int testCount, int retryCount, int status) const {
    Dbg(L"%lstestCount = %d: retryCount = %d CompCode = 0x%x status is %u Sendseq = 0x%02x Got Seq = 0x%02x\n", 1,
        prefix, testCount, retryCount, m_Answer.completionCode, static_cast<unsigned int>(status), sendSeq,
        AnswerSequence());
}

void CBridgedRequest::FillResponse(BMC_MESSAGE& response) const {
    const UINT8* const data = m_Answer.data;
    response = m_Request;
    response.rsSa = data[ANSWER_RESPONDER];
    response.netFn = data[ANSWER_NETFN] >> 2;
    response.lun = data[ANSWER_SEQUENCE] & 3;
    response.cmd = data[ANSWER_COMMAND];
    response.completionCode = data[ANSWER_COMPLETION_CODE];
    response.dataLength = m_Answer.dataLength - ANSWER_WRAPPING_SIZE;
    std::memcpy(response.data, data + ANSWER_DATA, response.dataLength);
}

} // namespace

int ProcessSendMessage(const BMC_MESSAGE* request, BMC_MESSAGE* response, UINT8 channel, UINT8 target) {
    if (request->dataLength > REQUEST_CAPACITY - WRAPPING_SIZE)
        return 1;
    CBridgedRequest bridged(*request, channel, target);
    POLL_OUTCOME outcome = POLL_NOTHING;
    const int attempts = request->netFn == NETFN_FIRMWARE ? FIRMWARE_ATTEMPTS : ATTEMPTS;
    for (int retryCount = attempts; outcome == POLL_NOTHING && retryCount >= 1; --retryCount)
        outcome = bridged.Attempt(*response, retryCount);
    if (outcome == POLL_NO_ANSWER_EXPECTED)
        return 0;
    if (outcome == POLL_ANSWERED)
        bridged.FillResponse(*response);
    sendSeq = sendSeq == LAST_SEQUENCE ? 1 : static_cast<UINT8>(sendSeq + 1);
    return outcome == POLL_ANSWERED ? 0 : BMCLIB_ERR_RETRIES;
}

void wait_for_SMS_flag(void) {
    // Compatibility: the default status port, whatever KCSAddress says.
    constexpr UINT16 statusPort = 0x0CA3;
    constexpr int pauseMilliseconds = 2;
    constexpr int limitMilliseconds = 500;
    int elapsed = 0;
    while (elapsed <= limitMilliseconds && (inb(statusPort) & STATUS_SMS) == 0) {
        usleep(pauseMilliseconds * 1000);
        elapsed += pauseMilliseconds;
    }
}
