// What a SOURCE or DEVICE of the command line names, and what is in it.
#pragma once

#include "tools/fructl/fru.h"
#include "tools/fructl/library.h"

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

/// A source and its contents.
struct CONTENTS {
    SOURCE source;
    BYTES bytes; ///< the file, or what was read from the device
    FRU fru;

    /// Throws EXIT_DAMAGED with what is wrong, if anything is, and where `advise` with what can be done.
    void RequireSound(bool advise = true) const;
};

/// The source of a file. The kind is told from its first bytes.
SOURCE FileSource(const std::string& path);
/// "type=...,bus=...,...", "system", or a name that the scan of the SDR repository finds.
SOURCE DeviceSource(const std::string& text);
/// Reads "type=imb,address=0x20,...". @throws CToolError for an unknown key or value
ADDRESS ParseAddress(const std::string& text);
/// The same form, without what has its usual value.
std::string AddressText(const ADDRESS& address);
/// The name of an access path as FRU text files have it.
const char* TypeText(FRU_TYPE type);

/// Reads a source, checks its bytes and lets the library load it where they are sound. A damaged FRU is no
/// failure: `fru` says what is wrong. @throws CToolError where nothing could be read
CONTENTS Open(const SOURCE& source);

} // namespace Fructl
