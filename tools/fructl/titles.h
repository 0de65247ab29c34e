// What areas and fields are called.
#pragma once

#include "tools/fructl/fieldname.h"

#include <map>
#include <string>
#include <vector>

namespace Fructl {

/// Titles in the language of this run: for each area its own, then those of its fixed fields, then the one
/// of its custom fields. An empty one: the library has none.
using TITLES = std::map<FRU_AREA, std::vector<std::string>>;
const TITLES& Titles();
/// The title of field `position` of an area; the tool's own where the library has none.
std::string Title(const AREA_ROW& row, std::size_t position);
std::string AreaTitle(FRU_AREA area);

} // namespace Fructl
