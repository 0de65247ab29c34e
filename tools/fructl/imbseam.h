// The place where the library finds its host's own way to the BMC.
#pragma once

#include "frudata/bmclib.h"

namespace Fructl {

/// A driver as the library asks for one (frudata/bmclib.h, "Supplied by the host").
struct IMB_DRIVER {
    int (*Open)();
    int (*Close)();
    int (*Send)(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                UINT8* completionCode);
};

/// From the next start of the library on it takes this driver, and ports read 0xFF and keep what they have. With null
/// it takes the ports, for what it does not send through the session library. Not owned.
void UseImbDriver(const IMB_DRIVER* driver);
/// Whether the last request over the driver got no answer.
bool IsAnswerLost();

} // namespace Fructl
