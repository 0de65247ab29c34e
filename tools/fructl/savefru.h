// FRUs written to files.
#pragma once

#include "tools/fructl/contents.h"

#include <string>

namespace Fructl {

/// The file to write.
struct TARGET {
    std::string path;
    std::string title; ///< in a text file; empty: the source's
    bool binary = false;
};

/// Writes `fru`, the contents or a changed copy of them, to a file. Reads a text file back before it replaces anything.
/// @throws CToolError if the text format cannot hold the FRU
void SaveFru(const CONTENTS& contents, const FRU& fru, const TARGET& target);

} // namespace Fructl
