// AREA.FIELD names of the command line.
#pragma once

#include "tools/fructl/fru.h"

#include <string_view>

namespace Fructl {

/// @throws CToolError for a name that does not exist
FIELD_NAME NamedField(std::string_view text);
/// The area of a name, the common header included. @throws CToolError
AREA_ID NamedArea(std::string_view text);

} // namespace Fructl
