// A source and its contents.
#pragma once

#include "tools/fructl/fru.h"
#include "tools/fructl/source.h"
#include "tools/fructl/text/frutext.h"

namespace Fructl {

/// A source and its contents.
struct CONTENTS {
    SOURCE source;
    BYTES bytes; ///< of the file, or those read from the device
    FRU fru;
    FRU_TEXT text = {};       ///< TEXT: its lines
    bool sizeKnown = true;    ///< DEVICE: it tells its size, that of `bytes`
    std::string failure = {}; ///< DEVICE: why it could not be read to its end

    /// Bytes that changes may use: all of a device, any number in a file.
    std::size_t SizeLimit() const { return source.kind == SOURCE::DEVICE ? bytes.size() : 0; }
    /// Throws EXIT_DAMAGED with all damage, if there is any, and with `advise` a remedy.
    void RequireSound(bool advise = true) const;
};

/// Notes damage, if there is any, before work on the sound areas.
void NoteDamage(const std::string& label, const FRU& fru);

} // namespace Fructl
