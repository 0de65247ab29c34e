// The platform code, on which the reach of one FRU type depends.
#pragma once

namespace Frudata_Private {

/// The code given to `Initialize`. FRU_PLATFORM_MBMC alone reaches FRU_TYPE_MBMC_FRU with FRU commands, and reads the
/// type in a text file.
inline int g_fdPlatform = 0;

} // namespace Frudata_Private
