// The host's IMB driver.
#pragma once

#include "frudata/bmclib.h"

namespace Frudata_Private {

/// Sends one request through the driver that `startIPMI` found. @return the driver's result
int SendImbRequest(const _IMBPREQUESTDATA& request, int timeout, UINT8* responseData, int* responseLength,
                   UINT8* completionCode);

} // namespace Frudata_Private
