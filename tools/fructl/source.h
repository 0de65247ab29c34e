// What a SOURCE or DEVICE of the command line names.
#pragma once

#include "tools/fructl/address.h"

#include <string>

namespace Fructl {

struct SOURCE {
    enum KIND {
        TEXT,  ///< a FRU text file
        IMAGE, ///< a binary image
        DEVICE ///< a FRU device
    };
    KIND kind = DEVICE;
    std::string label; ///< the file's path, or the device's name or address
    std::string title; ///< the FRU's own name, where known
    ADDRESS address;   ///< DEVICE
};

/// The source of a file. The kind is told from its first bytes.
SOURCE FileSource(const std::string& path);

} // namespace Fructl
