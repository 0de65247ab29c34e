// Sessions over one device: reading it, and writing it byte by byte or through the library's table.
#pragma once

#include "tools/fructl/child.h"
#include "tools/fructl/contents.h"
#include "tools/fructl/device.h"
#include "tools/fructl/librarychanges.h"

#include "fruimage/plan.h"

namespace Fructl {

/// Reads a device. @param atLeast bytes from its start that are read in any case. @throws CToolError where nothing,
/// or with AREAS not everything wanted, could be read
DEVICE_BYTES ReadDevice(const SOURCE& source, READING reading, std::size_t atLeast = 0, const PROGRESS& progress = {});
/// Writes a device's bytes from its start on, except where `known` says that they are there. @throws CToolError
void WriteDevice(const SOURCE& source, BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress);
/// Makes the writes of a plan, in their order, on a device that holds `before`. @throws CToolError
void WriteSteps(const SOURCE& source, const std::vector<FruImage::STEP>& steps, const BYTES& before,
                const PROGRESS& progress);
/// Whether the library, asked with a simulated device, makes exactly `expected` of the image with these changes.
bool LibraryWrites(const CONTENTS& contents, const LIBRARY_CHANGES& changes, const BYTES& expected);
/// Loads the device, makes the changes and writes it back through the table. @throws CToolError
void CommitDevice(const CONTENTS& contents, const LIBRARY_CHANGES& changes, const PROGRESS& progress);

} // namespace Fructl
