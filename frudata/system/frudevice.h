// What those who work on FRU devices share.
#pragma once

#include "frudata/types.h"

namespace Frudata_Private {

/// The bus of a device that is on none.
inline constexpr UINT8 NO_BUS = 0xFF;

/// The kind of BMC, asked anew for each write (a BMC_TYPE_ value).
extern UINT32 g_BMCType;

} // namespace Frudata_Private
