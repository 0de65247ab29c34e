// Loading the module "frudata-lan.so", and the three functions of an IMB driver over it.
#pragma once

#include "drivers/lan/lan.h"

#include <string>

namespace Frudata_Driver {

/// The path of the module for this program: installed beside it, or in the same build directory. Empty without one.
std::string LanModulePath();

/**
 * Loads the module, which stays loaded. @return null, with a `message` that says what to install, when there is none
 * at `path` or it has another version
 */
const LAN_INTERFACE* LoadLan(const std::string& path, std::string& message);

/// The session that the IMB functions below use, the caller's until it is replaced by null.
void UseLanSession(const LAN_INTERFACE* lan, LAN_SESSION* session);

/// A host defines open_imb, close_imb and SendTimedImbpRequest (imbdriver.h) with these.
int LanOpenImb();
int LanCloseImb();
int LanSendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                            UINT8* completionCode);

} // namespace Frudata_Driver
