#include "sim/fronts.h"

namespace Frudata_Sim {

namespace {

CSimulatedBmc* gp_currentBmc = nullptr;
CKcsModel* gp_currentKcs = nullptr;

} // namespace

void SetCurrentBmc(CSimulatedBmc* bmc) {
    gp_currentBmc = bmc;
}

CSimulatedBmc* CurrentBmc() {
    return gp_currentBmc;
}

void SetCurrentKcs(CKcsModel* kcs) {
    gp_currentKcs = kcs;
}

CKcsModel* CurrentKcs() {
    return gp_currentKcs;
}

} // namespace Frudata_Sim
