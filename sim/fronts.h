// The BMC that the fronts serve. A host links the fronts it wants; each is a target of its own:
//
//   fru_sim_imb      open_imb, close_imb, SendTimedImbpRequest: the host's IMB driver
//   fru_sim_kcs      inb, outb in the place of the library's own
//   fru_sim_session  the host's end of the session library `ipmi` (libipmi.so), loaded at run time
//
// The functions are looked up at load time: the executable needs ENABLE_EXPORTS.
#pragma once

#include "sim/kcsmodel.h"

#include "frudata/bmclib.h"

namespace Frudata_Sim {

/// Sets the BMC that the IMB and the session front serve, or none with null: then open_imb returns 0 and
/// no session opens. Not owned; it must stay until replaced.
void SetCurrentBmc(CSimulatedBmc* bmc);
CSimulatedBmc* CurrentBmc();

/// The IMB front's SendTimedImbpRequest, for hosts that define that function themselves. @return its result
int ServeImbRequest(const _IMBPREQUESTDATA* request, UINT8* responseData, int* responseLength, UINT8* completionCode);

/// Sets the interface that inb and outb serve, or none with null: then every port reads 0xFF. Not owned.
void SetCurrentKcs(CKcsModel* kcs);
CKcsModel* CurrentKcs();

} // namespace Frudata_Sim
