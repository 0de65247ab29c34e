// Names that the standard gives to numbers: IPMI completion codes.
#pragma once

#include "frudata/types.h"

#include <string>

namespace Fructl {

/// What an IPMI completion code means (IPMI 2.0, section 5.2), with its number.
std::string CompletionCodeText(UINT8 code);

} // namespace Fructl
