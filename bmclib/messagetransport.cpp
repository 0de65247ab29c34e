// Requests: to the BMC on the way chosen for them, to every other controller bridged by the BMC.
#include "bmclib/messagetransport.h"
#include "bmclib/accesspath.h"
#include "bmclib/imbdriver.h"
#include "bmclib/platform.h"

#include <cstring>

namespace {

using namespace Frudata_Private;

constexpr UINT8 CHANNEL_PRIMARY_IPMB = 0;
// The one controller on another bus.
constexpr UINT8 CHANNEL_6 = 6;
constexpr UINT8 CHANNEL_6_ADDRESS = 0x2C;

constexpr int TRANSPORT_FAILED = 1;
constexpr unsigned int FRAME_HEADER_SIZE = 2;  // network function, command
constexpr unsigned int ANSWER_HEADER_SIZE = 3; // network function, command, completion code

int SendOverKcs(const _IMBPREQUESTDATA& request, UINT8* responseData, int* responseLength, UINT8* completionCode) {
    UINT8 frame[RESPONSE_CAPACITY];
    const unsigned int dataLength = static_cast<unsigned int>(request.dataLength);
    frame[0] = static_cast<UINT8>(request.netFn << 2); // Compatibility: over KCS every request goes to LUN 0.
    frame[1] = request.cmdType;
    if (dataLength > 0)
        std::memcpy(frame + FRAME_HEADER_SIZE, request.data, dataLength);
    if (KCSSendMessage(frame, FRAME_HEADER_SIZE + dataLength) != 0)
        return TRANSPORT_FAILED;
    unsigned int count = 0;
    if (KCSReadBMCData(frame, sizeof frame, &count) != 0 || count < ANSWER_HEADER_SIZE)
        return TRANSPORT_FAILED;
    *completionCode = frame[ANSWER_HEADER_SIZE - 1];
    *responseLength = static_cast<int>(count - ANSWER_HEADER_SIZE);
    std::memcpy(responseData, frame + ANSWER_HEADER_SIZE, count - ANSWER_HEADER_SIZE);
    return 0;
}

int SendOnWay(WAY way, const _IMBPREQUESTDATA& request, int timeout, UINT8* data, int* length, UINT8* completionCode) {
    switch (way) {
    case WAY_IMB_DRIVER:
        return SendImbRequest(request, timeout, data, length, completionCode);
    case WAY_SESSION:
        return SendTimedUsbRequest(&request, timeout, data, length, completionCode);
    case WAY_SESSION_OR_KCS:
        if (SendTimedUsbRequest(&request, timeout, data, length, completionCode) == 0)
            return 0;
        [[fallthrough]];
    case WAY_KCS:
        return SendOverKcs(request, data, length, completionCode);
    case WAY_NONE:
        break;
    }
    return 0; // Compatibility: a request that cannot be sent seems to succeed.
}

int SendToBmc(const BMC_MESSAGE& request, BMC_MESSAGE& response, unsigned int timeout) {
    int length = RESPONSE_CAPACITY;
    UINT8 completionCode = 0;
    int status = TRANSPORT_FAILED;
    if (request.dataLength <= REQUEST_CAPACITY) {
        const _IMBPREQUESTDATA record = {request.cmd,
                                         BMC_ADDRESS,
                                         0,
                                         request.netFn,
                                         request.lun,
                                         request.data,
                                         static_cast<int>(request.dataLength)};
        status = SendOnWay(ChooseWay(g_Mbmcsupport, request.dataLength), record, static_cast<int>(timeout),
                           response.data, &length, &completionCode);
    }
    if (length < 0 || length > RESPONSE_CAPACITY) {
        length = 0;
        status = status == 0 ? TRANSPORT_FAILED : status;
    }
    response.rsSa = request.rsSa;
    response.netFn = request.netFn;
    response.lun = request.lun;
    response.cmd = request.cmd;
    response.completionCode = completionCode;
    response.dataLength = static_cast<UINT32>(length);
    return status;
}

} // namespace

namespace Frudata_Private {

int ProcessReusedMessage(const BMC_MESSAGE& request, BMC_MESSAGE& response, unsigned int timeout, UINT32& used) {
    std::memset(response.data, 0, used);
    used = RESPONSE_CAPACITY;
    AcquirePortAccess();
    if (request.rsSa != BMC_ADDRESS) {
        const UINT8 channel = request.rsSa == CHANNEL_6_ADDRESS ? CHANNEL_6 : CHANNEL_PRIMARY_IPMB;
        return ProcessSendMessage(&request, &response, channel, request.rsSa);
    }
    const int status = SendToBmc(request, response, timeout);
    // Only an IMB driver writes into the record itself, and may leave bytes behind the reported ones.
    if (g_Mbmcsupport != ACCESS_IMB)
        used = response.dataLength;
    return status;
}

} // namespace Frudata_Private

int ProcessMessage(const BMC_MESSAGE* request, BMC_MESSAGE* response, unsigned int timeout) {
    UINT32 used = RESPONSE_CAPACITY;
    return ProcessReusedMessage(*request, *response, timeout, used);
}

int ProcessTimedMessage(const BMC_MESSAGE* request, BMC_MESSAGE* response, unsigned int timeout) {
    return ProcessMessage(request, response, timeout);
}

int SendTimedImbpRequest_t(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                           UINT8* completionCode) {
    if (request->dataLength < 0 || request->dataLength > REQUEST_CAPACITY)
        return TRANSPORT_FAILED;
    const WAY way = ChooseWay(ACCESS_OWN, static_cast<UINT32>(request->dataLength));
    return SendOnWay(way, *request, timeout, responseData, responseLength, completionCode);
}
