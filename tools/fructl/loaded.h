// A library with its FRU loaded, and changes made to it. For child processes only.
#pragma once

#include "tools/fructl/contents.h"
#include "tools/fructl/edit.h"
#include "tools/fructl/library.h"

#include <memory>

namespace Fructl {

/// Starts the library, and loads and selects the FRU that the bytes of `contents` are an image of.
std::unique_ptr<CLibrary> ImageLibrary(const CONTENTS& contents);
/// The same from the device or the file itself.
std::unique_ptr<CLibrary> LoadedLibrary(const CONTENTS& contents);
/// Makes the changes; `fru` is what the loaded FRU holds.
void ApplyEdits(const CLibrary& library, const FRU& fru, EDITS edits);

} // namespace Fructl
