// This program as a host with several IMB drivers: the one in use.
#pragma once

#include "frudata/bmclib.h"

namespace Fructl {

/// The functions of frudata/imbdriver.h.
struct IMB_DRIVER {
    int (*Open)();
    int (*Close)();
    int (*Send)(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                UINT8* completionCode);
};

/// From its next start on the library uses this driver; ports read 0xFF and ignore writes. With null it uses the ports,
/// except for requests through the session library. Not owned.
void UseImbDriver(const IMB_DRIVER* driver);
/// Whether the last request over the driver got no answer.
bool IsAnswerLost();

} // namespace Fructl
