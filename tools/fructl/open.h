// Sources read whole.
#pragma once

#include "tools/fructl/contents.h"
#include "tools/fructl/devicesession.h"

namespace Fructl {

/// Reads a source and takes its image apart. A damaged FRU is no failure: its findings say what is wrong.
/// @param reading how much of a device is read. @throws CToolError where nothing could be read, or a text file is none
CONTENTS Open(const SOURCE& source, READING reading = READING::AREAS, const PROGRESS& progress = {});

} // namespace Fructl
