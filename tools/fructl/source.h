// The SOURCE and DEVICE arguments of the command line.
#pragma once

#include "tools/fructl/address.h"
#include "tools/fructl/bytes.h"

#include <string>

namespace Fructl {

/// In front of a file's name: marks an EEPROM, whatever its path.
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
    BYTES bytes = {};      ///< TEXT, IMAGE: the contents, which a pipe yields only once
    bool isEeprom = false; ///< DEVICE: the file `label`, written in place
};

/// The EEPROM that the kernel shows as a file.
SOURCE EepromSource(const std::string& path);
/// The source's name for people, in the language of this run; messages have its `label`.
std::string ShownLabel(const SOURCE& source);
/// The device in the form of --at and --to.
std::string DeviceText(const SOURCE& device);
/// Reads a file, whose bytes tell the kind. @throws CToolError where it cannot be read, is empty or too long
SOURCE FileSource(const std::string& path);

} // namespace Fructl
