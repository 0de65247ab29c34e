// The functions that the library looks up in its host. A host with several ways to the BMC defines them itself.
#include "frudata/imbdriver.h"
#include "frudata/openipmi.h"

#include <dlfcn.h>

namespace {

using READ_PORT = UINT8(UINT16 port);
using WRITE_PORT = void(UINT8 value, UINT16 port);

/// The next function of the name in the order of libraries; null without one.
template <typename FUNCTION> FUNCTION* Next(FUNCTION*& found, const char* name) {
    if (!found)
        found = reinterpret_cast<FUNCTION*>(dlsym(RTLD_NEXT, name));
    return found;
}

READ_PORT* gp_readPort = nullptr;
WRITE_PORT* gp_writePort = nullptr;

} // namespace

int open_imb(void) {
    return OpenIpmiOpen();
}

int close_imb(void) {
    return OpenIpmiClose();
}

int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                         UINT8* completionCode) {
    return OpenIpmiSend(request, timeout, responseData, responseLength, completionCode);
}

// The ports are the kernel's. A status port that reads 0xFF also shows the attention flag: without it a bridging
// requester would wait half a second, although the kernel fetches the message itself.
UINT8 inb(UINT16 port) {
    return OpenIpmiDevice() || !Next(gp_readPort, "inb") ? 0xFF : gp_readPort(port);
}

void outb(UINT8 value, UINT16 port) {
    if (!OpenIpmiDevice() && Next(gp_writePort, "outb"))
        gp_writePort(value, port);
}
