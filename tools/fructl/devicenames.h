// The names that a scan has found, kept for the shell's completion, which must not ask the BMC.
#pragma once

#include "tools/fructl/source.h"

#include <string>
#include <vector>

namespace Fructl {

/// Keeps the names, in the user's cache directory. Where that cannot be written, nothing is kept.
void KeepDeviceNames(const std::vector<SOURCE>& devices);
/// The names that the last scan of this BMC found, one a line; empty where there was none.
std::string KeptDeviceNames();

} // namespace Fructl
