// IPMI over LAN as a way to a BMC; loads its module. For child processes.
#pragma once

#include "drivers/lan/lan.h"

#include <string>

namespace Fructl {

/// As the members of WAY.
std::string OpenLan();
std::string DescribeLan();
std::string LanFailure();
void CloseLan();

} // namespace Fructl
