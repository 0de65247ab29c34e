// IPMI over LAN as a way to a BMC, when a host is named: one session for all processes of a run.
#pragma once

#include "tools/fructl/imbseam.h"

#include <string>

namespace Fructl {

/// As the members of WAY.
extern const IMB_DRIVER LAN_DRIVER;
void ShareLan();
std::string OpenLan();
std::string DescribeLan();
std::string LanFailure();

} // namespace Fructl
