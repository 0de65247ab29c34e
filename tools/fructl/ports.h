// Checks of the KCS ports before anything is sent to them.
#pragma once

#include "frudata/types.h"

#include <string>

namespace Fructl {

/// The base port of the settings, or the usual one.
UINT16 KcsPort();
/// The driver that the kernel's list of port regions names for `port` or the next one; empty: none.
std::string PortOwner(UINT16 port);
/// Why this program may not touch the KCS ports at `port`, or nothing. With `insist`, a driver that owns them is no
/// reason.
std::string PortRefusal(UINT16 port, bool insist);
/// Sets the library's port. @return why there is no KCS interface, or nothing
std::string KcsProblem(UINT16 port);

} // namespace Fructl
