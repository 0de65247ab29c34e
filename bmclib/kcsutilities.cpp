// Looking at a KCS interface without transferring a message. For hosts; the library calls none of these.
#include "bmclib/kcsregisters.h"
#include "common/ipmi.h"

using namespace Frudata_Private;

// The default base port; hosts may change it.
int KCSAddress = 0x0CA2;

int IsKCS(void) {
    return inb(KcsStatusPort()) != 0xFF || inb(KcsDataPort()) != 0xFF ? 1 : 0;
}

int KCSMessageReady(void) {
    return (inb(KcsStatusPort()) & STATUS_SMS) != 0 ? 1 : 0;
}

int CheckMessageReady(UINT8 responderAddress, unsigned int timeout) {
    const UINT8 awaited = responderAddress == BMC_ADDRESS ? STATUS_OBF : STATUS_SMS;
    SetMsTimeout(timeout);
    while ((inb(KcsStatusPort()) & awaited) == 0) {
        if (CheckMsTimeout() != 0)
            return 1;
    }
    return 0;
}

void SetMsTimeout(unsigned int) {}

int CheckMsTimeout(void) {
    return 0;
}
