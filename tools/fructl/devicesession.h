// Sessions with one FRU device: read, written, committed through the table.
#pragma once

#include "tools/fructl/contents.h"
#include "tools/fructl/device.h"
#include "tools/fructl/edit.h"

namespace Fructl {

/// Reads what a device's header and areas cover, and at least `atLeast` bytes. @throws CToolError
BYTES ReadDevice(const SOURCE& source, std::size_t atLeast, const PROGRESS& progress = {});
/// Writes a device's bytes from its start on, except where `known` says that they are there. @throws CToolError
void WriteDevice(const SOURCE& source, BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress);

/// Loads the device, applies `edits` and writes it back through the table. @throws CToolError
void CommitDevice(const CONTENTS& contents, const EDITS& edits, const PROGRESS& progress);

} // namespace Fructl
