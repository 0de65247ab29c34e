// One request at a time through the kernel's device; executes Send Message and Get Message itself.
#include "drivers/openipmi/bridge.h"
#include "frudata/openipmi.h"

#include <cstring>

namespace {

using namespace Frudata_Driver;
using namespace Frudata_OpenIpmi;

constexpr UINT8 BMC_ADDRESS = 0x20;
// A requester sends Get Message a hundred times and more without a pause: together they wait one time-out.
constexpr int POLLS = 100;

/// The caller's room for the answer.
struct RESPONSE {
    UINT8* data;
    int* length;
    UINT8* completionCode;

    std::size_t Room() const { return static_cast<std::size_t>(*length); }
    int Complete(UINT8 code, std::size_t dataLength) const {
        *completionCode = code;
        *length = static_cast<int>(dataLength);
        return OPENIPMI_OK;
    }
};

class CDriver {
  public:
    int Send(const _IMBPREQUESTDATA& request, int timeout, const RESPONSE& response);
    bool Open();
    CDevice& Device() { return m_device; }

  private:
    int SendToBmc(const _IMBPREQUESTDATA& request, int timeout, const RESPONSE& response);
    int SendMessage(const _IMBPREQUESTDATA& request, int timeout, const RESPONSE& response);
    int GetMessage(int timeout, const RESPONSE& response);
    TRANSFER Await(long id, const CDeadline& deadline);
    int BadAnswer();

    CDevice m_device;
    CBridge m_bridge;
    ANSWER m_answer;
};

constinit CDriver g_driver;

std::span<const UINT8> Data(const _IMBPREQUESTDATA& request) {
    return {request.data, static_cast<std::size_t>(request.dataLength)};
}

bool CDriver::Open() {
    m_bridge.End();
    return m_device.Open();
}

int CDriver::Send(const _IMBPREQUESTDATA& request, int timeout, const RESPONSE& response) {
    if (!m_device.Path()) {
        m_device.SetFailure("no IPMI device is open");
        return OPENIPMI_ERR_DEVICE;
    }
    if (!m_device.IsOwn() && !Open())
        return OPENIPMI_ERR_DEVICE;
    const bool isForQueue = request.netFn == NETFN_APPLICATION && request.rsLun == 0;
    if (isForQueue && request.cmdType == COMMAND_SEND_MESSAGE)
        return SendMessage(request, timeout, response);
    if (isForQueue && request.cmdType == COMMAND_GET_MESSAGE)
        return GetMessage(timeout, response);
    return SendToBmc(request, timeout, response);
}

/// Receives until the answer to request `id` is in m_answer, or nothing comes in time. Drops answers to requests given
/// up; keeps that of the bridged request.
TRANSFER CDriver::Await(long id, const CDeadline& deadline) {
    do {
        const TRANSFER received = m_device.Receive(m_answer, deadline);
        if (received != TRANSFER::DONE)
            return received;
        m_bridge.Keep(m_answer);
        if (m_answer.id == id)
            return TRANSFER::DONE;
    } while (deadline.Remaining() > 0);
    return TRANSFER::NOTHING;
}

int CDriver::BadAnswer() {
    m_device.SetFailure("%s: an answer too long for its place, or without a completion code", m_device.Path());
    return OPENIPMI_ERR_BAD_ANSWER;
}

int CDriver::SendToBmc(const _IMBPREQUESTDATA& request, int timeout, const RESPONSE& response) {
    const CDeadline deadline(timeout);
    long id = 0;
    const REQUEST message{.netFn = request.netFn, .cmd = request.cmdType, .data = Data(request), .patience = timeout};
    if (m_device.Send({.lun = request.rsLun}, message, id) != TRANSFER::DONE)
        return OPENIPMI_ERR_DEVICE;
    switch (Await(id, deadline)) {
    case TRANSFER::DONE:
        break;
    case TRANSFER::NOTHING:
        m_device.SetFailure("%s: no answer within %d milliseconds", m_device.Path(), timeout);
        return OPENIPMI_ERR_TIMEOUT;
    default:
        return OPENIPMI_ERR_DEVICE;
    }
    if (m_answer.isCut || m_answer.length == 0 || m_answer.length - 1U > response.Room())
        return BadAnswer();
    std::memcpy(response.data, m_answer.bytes + 1, m_answer.length - 1U);
    return response.Complete(m_answer.bytes[0], m_answer.length - 1U);
}

int CDriver::SendMessage(const _IMBPREQUESTDATA& request, int timeout, const RESPONSE& response) {
    m_bridge.End();
    BRIDGED_REQUEST bridged;
    const UINT8 code = ParseSendMessage(Data(request), bridged);
    if (code != COMPLETION_SUCCESS)
        return response.Complete(code, 0);
    const DESTINATION destination{
        .isOnIpmb = true, .channel = bridged.channel, .address = bridged.responder, .lun = bridged.lun};
    long id = 0;
    switch (m_device.Send(destination, {bridged.netFn, bridged.cmd, bridged.data, timeout}, id)) {
    case TRANSFER::DONE:
        m_bridge.Begin(bridged, id);
        return response.Complete(COMPLETION_SUCCESS, 0);
    case TRANSFER::REFUSED: // no such channel, not an IPMB, or too long for one
        return response.Complete(COMPLETION_INVALID_FIELD, 0);
    default:
        return OPENIPMI_ERR_DEVICE;
    }
}

int CDriver::GetMessage(int timeout, const RESPONSE& response) {
    if (m_bridge.IsWaiting() && Await(m_bridge.Id(), CDeadline(timeout / POLLS)) == TRANSFER::FAILED)
        return OPENIPMI_ERR_DEVICE;
    if (!m_bridge.IsAnswered())
        return response.Complete(COMPLETION_NO_MESSAGE, 0);
    const std::size_t length = m_bridge.Frame({response.data, response.Room()});
    m_bridge.End();
    return length == 0 ? BadAnswer() : response.Complete(COMPLETION_SUCCESS, length);
}

bool IsValid(const _IMBPREQUESTDATA* request, const UINT8* responseData, const int* responseLength,
             const UINT8* completionCode) {
    return request && responseData && responseLength && completionCode && *responseLength >= 0 &&
           request->rsSa == BMC_ADDRESS && request->busType == 0 && request->netFn < 0x40 && request->rsLun < 4 &&
           request->dataLength >= 0 && request->dataLength <= 0xFFFF && (request->data || request->dataLength == 0);
}

} // namespace

int OpenIpmiOpen(void) {
    return (g_driver.Device().Path() && g_driver.Device().IsOwn()) || g_driver.Open() ? 1 : 0;
}

int OpenIpmiClose(void) {
    g_driver.Device().Close();
    return 0;
}

const char* OpenIpmiDevice(void) {
    return g_driver.Device().Path();
}

const char* OpenIpmiFailure(void) {
    return g_driver.Device().Failure();
}

int OpenIpmiSend(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                 UINT8* completionCode) {
    if (!IsValid(request, responseData, responseLength, completionCode)) {
        g_driver.Device().SetFailure("not a request to the BMC");
        return OPENIPMI_ERR_ARGUMENT;
    }
    return g_driver.Send(*request, timeout, {responseData, responseLength, completionCode});
}
