#include "tools/fructl/imbseam.h"

#include "frudata/imbdriver.h"

#include <dlfcn.h>

namespace {

const Fructl::IMB_DRIVER* gp_driver = nullptr;
bool g_isLost = false;

/// The library's function, which this program's replaces.
template <typename FUNCTION> FUNCTION* Next(const char* name) {
    return reinterpret_cast<FUNCTION*>(dlsym(RTLD_NEXT, name));
}

} // namespace

void Fructl::UseImbDriver(const IMB_DRIVER* driver) {
    gp_driver = driver;
}

bool Fructl::IsAnswerLost() {
    return g_isLost;
}

int open_imb(void) {
    return gp_driver ? gp_driver->Open() : 0;
}

int close_imb(void) {
    return gp_driver ? gp_driver->Close() : 0;
}

int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                         UINT8* completionCode) {
    const int result = gp_driver ? gp_driver->Send(request, timeout, responseData, responseLength, completionCode) : 1;
    g_isLost = result != 0;
    return result;
}

// Beside a driver the ports are someone else's. A status port that reads 0xFF also shows the attention flag: without it
// a bridging requester would wait half a second.
UINT8 inb(UINT16 port) {
    static UINT8 (*const next)(UINT16) = Next<UINT8(UINT16)>("inb");
    return gp_driver || !next ? UINT8{0xFF} : next(port);
}

void outb(UINT8 value, UINT16 port) {
    static void (*const next)(UINT8, UINT16) = Next<void(UINT8, UINT16)>("outb");
    if (!gp_driver && next)
        next(value, port);
}
