// The functions in which the library finds its host's way to the BMC.
#pragma once

#include "frudata/bmclib.h"

#pragma GCC visibility push(default)
extern "C" {
int open_imb(void);
int close_imb(void);
int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                         UINT8* completionCode);
}
#pragma GCC visibility pop

namespace Fructl {

/// A driver for the library (frudata/bmclib.h, "Supplied by the host").
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
