#include "bmclib/imbdriver.h"

// Supplied by the host process; null where it has no such driver.
#pragma GCC visibility push(default)
extern "C" {
[[gnu::weak]] int open_imb(void);
[[gnu::weak]] int close_imb(void);
[[gnu::weak]] int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData,
                                       int* responseLength, UINT8* completionCode);
}
#pragma GCC visibility pop

int startIPMI(void) {
    // A driver without a way to send is none.
    return open_imb && SendTimedImbpRequest ? open_imb() : 0;
}

int endIPMI(void) {
    return close_imb ? close_imb() : 0;
}

namespace Frudata_Private {

int SendImbRequest(const _IMBPREQUESTDATA& request, int timeout, UINT8* responseData, int* responseLength,
                   UINT8* completionCode) {
    return SendTimedImbpRequest(&request, timeout, responseData, responseLength, completionCode);
}

} // namespace Frudata_Private
