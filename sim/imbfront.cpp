// The host's IMB driver: three functions that the library looks up when it is loaded.
#include "sim/fronts.h"

#include "frudata/imbdriver.h"

using namespace Frudata_Sim;

int open_imb(void) {
    return CurrentBmc() ? 1 : 0;
}

int close_imb(void) {
    return CurrentBmc() ? 1 : 0;
}

int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int /*timeout*/, UINT8* responseData, int* responseLength,
                         UINT8* completionCode) {
    return ServeImbRequest(request, responseData, responseLength, completionCode);
}
