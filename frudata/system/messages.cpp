#include "frudata/system/messages.h"

#include "bmclib/messagetransport.h"

#include <algorithm>
#include <new>

namespace Frudata_Private {

std::unique_ptr<BMC_MESSAGE> ReqMsg;
std::unique_ptr<BMC_MESSAGE> RespMsg;

namespace {

/// Bytes at the start of RespMsg's data that the last answer may have written; the rest is 0.
UINT32 g_used = 0;

} // namespace

bool AllocateMessages() {
    g_used = 0;
    ReqMsg.reset(new (std::nothrow) BMC_MESSAGE());
    RespMsg.reset(new (std::nothrow) BMC_MESSAGE());
    return ReqMsg && RespMsg;
}

void FreeMessages() {
    ReqMsg.reset();
    RespMsg.reset();
}

void BuildRequest(UINT8 responder, UINT8 netFn, UINT8 lun, UINT8 command, std::initializer_list<UINT8> data) {
    ReqMsg->rsSa = responder;
    ReqMsg->netFn = netFn;
    ReqMsg->lun = lun;
    ReqMsg->cmd = command;
    std::copy(data.begin(), data.end(), ReqMsg->data);
    ReqMsg->dataLength = static_cast<UINT32>(data.size());
    ReqMsg->completionCode = 0;
}

int SendRequest() {
    return ProcessReusedMessage(*ReqMsg, *RespMsg, REQUEST_TIMEOUT, g_used);
}

int SendBridgedRequest(UINT8 channel, UINT8 target) {
    g_used = BMC_MESSAGE_DATA_SIZE;
    return ProcessSendMessage(ReqMsg.get(), RespMsg.get(), channel, target);
}

} // namespace Frudata_Private
