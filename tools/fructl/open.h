// Sources read whole.
#pragma once

#include "tools/fructl/contents.h"

namespace Fructl {

/// Reads a source, checks its bytes and lets the library load it where they are sound. A damaged FRU is no
/// failure: `fru` says what is wrong. @throws CToolError where nothing could be read
CONTENTS Open(const SOURCE& source);

} // namespace Fructl
