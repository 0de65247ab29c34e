// Reading a source.
#pragma once

#include "tools/fructl/contents.h"
#include "tools/fructl/devicesession.h"

namespace Fructl {

/// Reads a source and parses its image. A damaged FRU is no failure: its findings tell the damage.
/// @param reading how much of a device to read. @throws CToolError if nothing can be read, or a text file is wrong
CONTENTS Open(const SOURCE& source, READING reading = READING::AREAS, const PROGRESS& progress = {});

} // namespace Fructl
