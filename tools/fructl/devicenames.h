// The names of the last scan, kept for the shell's completion, which must not ask the BMC.
#pragma once

#include "tools/fructl/source.h"

#include <string>
#include <vector>

namespace Fructl {

/// Keeps the names in the user's cache directory, if that is writable.
void KeepDeviceNames(const std::vector<SOURCE>& devices);
/// The names of the last scan of this BMC, one a line; empty without one.
std::string KeptDeviceNames();

} // namespace Fructl
