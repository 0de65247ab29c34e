// The way of a request to the BMC.
#pragma once

#include "frudata/bmclib.h"

namespace Frudata_Private {

/// Values of g_Mbmcsupport: what the discovery has found.
enum ACCESS_PATH : int {
    ACCESS_OWN = 0,  ///< the library's own KCS driver, and the session library where the host selects it
    ACCESS_NONE = 1, ///< the firmware names an interface the library has no driver for
    ACCESS_IMB = 2   ///< the host's IMB driver
};

/// Decided once by `MainInit`; an ACCESS_PATH.
extern int g_Mbmcsupport;

enum WAY {
    WAY_NONE, ///< sends nothing: the request seems to succeed, without data
    WAY_IMB_DRIVER,
    WAY_KCS,
    WAY_SESSION,
    WAY_SESSION_OR_KCS ///< KCS where the session library fails
};

/// The way of a request with `dataLength` data bytes after the discovery found `accessPath`.
WAY ChooseWay(int accessPath, UINT32 dataLength);

} // namespace Frudata_Private
