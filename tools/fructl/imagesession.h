// Sessions over the bytes of files and images.
#pragma once

#include "tools/fructl/contents.h"
#include "tools/fructl/edit.h"

namespace Fructl {

/// Has the library load the source and compares what it sees with `contents.fru`. What it refuses becomes a
/// problem of `contents.fru`.
void LoadWithLibrary(CONTENTS& contents);
/// A sound image with `edits`, made by the library in a simulated device. @throws CToolError
BYTES EditImage(const BYTES& image, const FRU& fru, const EDITS& edits, const std::string& name);
/// Saves the source with `edits` as a FRU text file `path`, relative to `directory`. @throws CToolError
void SaveText(const CONTENTS& contents, const EDITS& edits, const std::string& directory, const std::string& path);

} // namespace Fructl
