// Tells FRU text files from binary images.
#pragma once

#include "tools/fructl/bytes.h"

namespace Fructl {

/// A text file has the keys of its format. Bytes without keys are an image, be it blank or damaged; but printable text
/// without keys counts as a wrong text file.
bool LooksLikeImage(BYTE_VIEW bytes);

} // namespace Fructl
