// What a SOURCE or DEVICE of the command line names.
#pragma once

#include "tools/fructl/address.h"
#include "tools/fructl/bytes.h"

#include <string>

namespace Fructl {

/// In front of a file's name: it is an EEPROM, wherever it lies.
inline constexpr const char* EEPROM_KEY = "eeprom=";

struct SOURCE {
    enum KIND {
        TEXT,  ///< a FRU text file
        IMAGE, ///< a binary image
        DEVICE ///< a FRU device: behind the BMC, or an EEPROM that the kernel shows as a file
    };
    KIND kind = DEVICE;
    std::string label;     ///< the file's path, or the device's name or address
    std::string title;     ///< the FRU's own name, where known
    ADDRESS address;       ///< DEVICE behind the BMC
    BYTES bytes = {};      ///< TEXT, IMAGE: what the file holds, which some can tell only once
    bool isEeprom = false; ///< DEVICE: the file `label`, written in place
};

/// The EEPROM that the kernel shows as a file.
SOURCE EepromSource(const std::string& path);
/// How --at and --to name the device.
std::string DeviceText(const SOURCE& device);
/// The source of a file, read. The kind is told from its first bytes.
SOURCE FileSource(const std::string& path);

} // namespace Fructl
