// FRUs written to files.
#pragma once

#include "tools/fructl/contents.h"

#include <string>

namespace Fructl {

/// The file to write.
struct TARGET {
    std::string path;
    std::string title; ///< to stand in a text file; empty: that of the source
    bool binary = false;
};

/// Writes `fru`, which is what `contents` hold or became, to a file. A text file is read back before it takes the
/// place of anything. @throws CToolError where the text format cannot hold the FRU
void SaveFru(const CONTENTS& contents, const FRU& fru, const TARGET& target);

} // namespace Fructl
