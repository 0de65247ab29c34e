// The two message records of all requests of this library and their answers.
#pragma once

#include "common/ipmi.h"
#include "frudata/bmclib.h"

#include <initializer_list>
#include <memory>

namespace Frudata_Private {

/// Allocated by `Initialize`, kept until `DeInitialize`.
extern std::unique_ptr<BMC_MESSAGE> ReqMsg;
extern std::unique_ptr<BMC_MESSAGE> RespMsg;

/// @return false when an allocation fails
bool AllocateMessages();
void FreeMessages();

/// Builds a request with the bytes of `data` in ReqMsg.
void BuildRequest(UINT8 responder, UINT8 netFn, UINT8 lun, UINT8 command, std::initializer_list<UINT8> data);

/// Sends ReqMsg to its address and receives the answer in RespMsg. @return a transport value, 0 is success
int SendRequest();
/// The same to the controller `target` on `channel`, whatever the request's address says.
int SendBridgedRequest(UINT8 channel, UINT8 target);

} // namespace Frudata_Private
