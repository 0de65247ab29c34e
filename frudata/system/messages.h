// The two message records that all requests of this library are built in and answered into.
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

/// Builds a request in ReqMsg, its data being `data`.
void BuildRequest(UINT8 responder, UINT8 netFn, UINT8 lun, UINT8 command, std::initializer_list<UINT8> data);

/// Sends ReqMsg to where its address says; the answer is in RespMsg. @return a transport value, 0 is success
int SendRequest();
/// The same to the controller `target` on `channel`, whatever the request's address says.
int SendBridgedRequest(UINT8 channel, UINT8 target);

} // namespace Frudata_Private
