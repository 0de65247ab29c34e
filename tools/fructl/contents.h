// A source and what is in it.
#pragma once

#include "tools/fructl/fru.h"
#include "tools/fructl/source.h"
#include "tools/fructl/text/frutext.h"

namespace Fructl {

/// A source and its contents.
struct CONTENTS {
    SOURCE source;
    BYTES bytes; ///< the file, or what was read from the device
    FRU fru;
    FRU_TEXT text = {};       ///< TEXT: its lines
    bool sizeKnown = true;    ///< DEVICE: it told its size, which is that of `bytes`
    std::string failure = {}; ///< DEVICE: why it could not be read to its end

    /// Bytes that changes may use: all of a device, any number in a file.
    std::size_t SizeLimit() const { return source.kind == SOURCE::DEVICE ? bytes.size() : 0; }
    /// Throws EXIT_DAMAGED with what is wrong, if anything is, and where `advise` with what can be done.
    void RequireSound(bool advise = true) const;
};

/// A note of what is damaged, if anything is, for work on what is not.
void NoteDamage(const std::string& label, const FRU& fru);

} // namespace Fructl
