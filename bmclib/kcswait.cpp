// The waits of the KCS driver. They spin, because a byte takes the BMC microseconds. The alarm ends a wait after 15
// seconds: its handler raises the time-out counter above the limit that the driver passes.
#include "bmclib/kcsregisters.h"
#include "bmclib/platform.h"

#include <csignal>
#include <unistd.h>

namespace Frudata_Private {

UINT8 Status = 0;

namespace {

constexpr unsigned int WAIT_SECONDS = 15;

volatile std::sig_atomic_t global_time = 0;

// Polls until the bits of `mask` read `wanted`. @return false on time-out
bool Poll(UINT8 mask, UINT8 wanted, unsigned int limit) {
    unsigned int elapsed = 0;
    for (;;) {
        Status = inb(KcsStatusPort());
        if (g_portReadRefused)
            return false; // no byte will ever be there
        if ((Status & mask) == wanted)
            return true;
        if (elapsed > limit)
            return false;
        elapsed = static_cast<unsigned int>(global_time);
    }
}

int Wait(UINT8 mask, UINT8 wanted, unsigned int limit) {
    std::signal(SIGALRM, kcs_timeout);
    alarm(WAIT_SECONDS);
    const bool reached = Poll(mask, wanted, limit);
    alarm(0);
    std::signal(SIGALRM, SIG_DFL);
    global_time = 0;
    return reached ? 0 : 1;
}

} // namespace

} // namespace Frudata_Private

using namespace Frudata_Private;

void kcs_timeout(int signalNumber) {
    if (signalNumber == SIGALRM)
        global_time = KCS_WAIT_LIMIT + 1;
}

int WaitWhileIbf(unsigned int limit) {
    return Wait(STATUS_IBF, 0, limit);
}

int WaitTilObf(unsigned int limit) {
    return Wait(STATUS_OBF, STATUS_OBF, limit);
}
