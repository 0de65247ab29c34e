// A library with its FRU loaded, and changes made to it. For child processes only.
#pragma once

#include "tools/fructl/contents.h"
#include "tools/fructl/library.h"
#include "tools/fructl/librarychanges.h"

#include <memory>

namespace Fructl {

/// Starts the library, and loads and selects the FRU of `contents` from a simulated device that holds its image.
std::unique_ptr<CLibrary> ImageLibrary(const CONTENTS& contents);
/// Loads and selects the FRU of the device itself, with a library that has been started on the BMC.
void LoadDevice(const CLibrary& library, const SOURCE& source);
/// Makes the changes; `fru` has the contents of the loaded FRU.
void ApplyChanges(const CLibrary& library, const FRU& fru, LIBRARY_CHANGES changes);

} // namespace Fructl
