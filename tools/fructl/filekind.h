// Whether a file's bytes are a FRU text file or a binary image.
#pragma once

#include "tools/fructl/bytes.h"

namespace Fructl {

/// A text file has the keys of its format. Where the bytes have none, they are an image: a FRU if something of one is
/// found, blank or damaged else; printable text without the keys is taken for a text file that is none.
bool LooksLikeImage(BYTE_VIEW bytes);

} // namespace Fructl
