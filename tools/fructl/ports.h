// The KCS ports, looked at before anything is sent to them.
#pragma once

#include "frudata/types.h"

#include <string>

namespace Fructl {

/// The base port that the settings name, or the usual one.
UINT16 KcsPort();
/// The driver that the kernel's list of port regions names for `port` or the next one; empty: none.
std::string PortOwner(UINT16 port);
/// Why the KCS interface at `port` cannot be used, or nothing. Where `insist`, a driver that owns it is no reason.
std::string PortProblem(UINT16 port, bool insist);

} // namespace Fructl
