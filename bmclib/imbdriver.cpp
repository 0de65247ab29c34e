#include "bmclib/imbdriver.h"

#include "frudata/imbdriver.h"

// Null where the host process has no such driver.
#pragma weak open_imb
#pragma weak close_imb
#pragma weak SendTimedImbpRequest

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
