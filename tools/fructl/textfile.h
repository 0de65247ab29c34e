// A FRU text file's own bytes: what its area blocks hold, field types included, which the library's
// table does not tell. The library judges whether the file is right; this only reads one that it took.
#pragma once

#include "tools/fructl/fru.h"

#include <string>

namespace Fructl {

/// Whether `bytes` look like a binary image, not like a text file: texts begin with a printable character.
bool LooksLikeImage(BYTE_VIEW bytes);

struct TEXT_FRU {
    std::string title;
    FRU fru; ///< offsets as the header names them; size is that of the device image it describes
};

/// Takes the text of a FRU text file apart.
TEXT_FRU ParseTextFile(const std::string& text);

} // namespace Fructl
