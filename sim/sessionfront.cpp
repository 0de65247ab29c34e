// The host's end of the session library.
#include "sim/sessionlink.h"

#include "sim/fronts.h"

#include <algorithm>

using namespace Frudata_Sim;

int FruSimSessionAvailable(void) {
    return CurrentBmc() ? 1 : 0;
}

int FruSimSessionRequest(UINT8 netFnLun, UINT8 cmd, const UINT8* data, int length, UINT8* answer, int capacity) {
    try {
        CSimulatedBmc* const bmc = CurrentBmc();
        if (!bmc)
            return -1;
        const IpmiAnswer result = bmc->Execute({.netFn = static_cast<UINT8>(netFnLun >> 2),
                                                .lun = static_cast<UINT8>(netFnLun & 0x03),
                                                .cmd = cmd,
                                                .data = BYTES(data, data + length)},
                                               FRONT::SESSION);
        if (result.delivery != DELIVERY::ANSWERED || result.data.size() >= static_cast<unsigned int>(capacity))
            return -1;
        answer[0] = result.completionCode;
        std::copy(result.data.begin(), result.data.end(), answer + 1);
        return static_cast<int>(result.data.size() + 1);
    } catch (...) {
        return -1;
    }
}
