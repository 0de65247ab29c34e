// Device images put together from areas, and rearranged for the library's way of writing.
#pragma once

#include "tools/fructl/fru.h"

#include <string>

namespace Fructl {

/// The device image of a FRU that came from a text file. `name` is for messages.
/// @throws CToolError where the areas do not fit the offsets of the header
BYTES ComposeImage(const FRU& fru, const std::string& name);

/// The library writes the areas one behind the other, whatever the header says. Empty where the header
/// agrees; else the first area that it would write to the wrong place, and where to.
std::string PackingProblem(const FRU& fru);
/// The same areas one behind the other, with a header that says so.
BYTES PackImage(const FRU& fru);
/// `original` with the areas of `packed` at their places. @throws CToolError where they do not fit
BYTES UnpackImage(BYTES original, const FRU& fru, BYTE_VIEW packed, const std::string& name);

} // namespace Fructl
