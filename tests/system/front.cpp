// The way to the BMC of one executable.
#include "tests/system/support.h"

#include "sim/fronts.h"

#include "frudata/bmclib.h"

namespace Frudata_Tests {

const FRONT g_front = FRONT::HOST_FRONT;

void PrepareFront(CSimulatedBmc& bmc, CKcsModel& kcs) {
    if (g_front == FRONT::KCS)
        SetCurrentKcs(&kcs);
    else
        SetCurrentBmc(&bmc);
}

void OpenFront() {
    if (g_front == FRONT::SESSION) {
        ASSERT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_USB));
    }
}

void CloseFront() {
    EXPECT_TRUE(SelectIPMIInterface(IPMI_INTERFACE_KCS));
    SetCurrentKcs(nullptr);
    SetCurrentBmc(nullptr);
}

} // namespace Frudata_Tests
