// How the BMC is reached: decided by the discovery and by the host's choice of interface, read by the
// message transport.
#pragma once

#include "frudata/bmclib.h"

namespace Frudata_Private {

/// Values of g_Mbmcsupport.
enum ACCESS_PATH : int {
    ACCESS_OWN_KCS = 0, ///< the library's own KCS driver
    ACCESS_NONE = 1,    ///< the firmware names an interface the library has no driver for: nothing is sent
    ACCESS_IMB = 2      ///< the host's IMB driver
};

/// Access path, decided once by `MainInit`.
extern int g_Mbmcsupport;
/// Interface that the host selected; KCS at first.
extern _IPMI_INTERFACE_TYPE eInterface;
/// 1 while a session of the session library is open.
extern int g_UseUSB;

} // namespace Frudata_Private
