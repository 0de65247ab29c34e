// Requests whose response record belongs to the library.
#pragma once

#include "frudata/bmclib.h"

namespace Frudata_Private {

/// As the exported ProcessMessage, which clears the whole response record first, for one that nothing else writes to:
/// its bytes from `used` on are zero. `used` becomes the number of bytes that this answer may have left.
int ProcessMessage(const BMC_MESSAGE& request, BMC_MESSAGE& response, unsigned int timeout, UINT32& used);

} // namespace Frudata_Private
