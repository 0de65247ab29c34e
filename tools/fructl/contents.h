// A source and what is in it.
#pragma once

#include "tools/fructl/fru.h"
#include "tools/fructl/source.h"

namespace Fructl {

/// A source and its contents.
struct CONTENTS {
    SOURCE source;
    BYTES bytes; ///< the file, or what was read from the device
    FRU fru;

    /// Throws EXIT_DAMAGED with what is wrong, if anything is, and where `advise` with what can be done.
    void RequireSound(bool advise = true) const;
};

} // namespace Fructl
