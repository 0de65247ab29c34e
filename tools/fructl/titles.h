// The titles of areas and fields in the language of this run.
#pragma once

#include "tools/fructl/fru.h"

#include <filesystem>
#include <string>

namespace Fructl {

/// The directory with the library's texts, one directory a language; empty without one.
std::filesystem::path DataDirectory();

/// The title of field `position` of an area; the tool's own where there is no text.
std::string Title(const AREA_ROW& row, std::size_t position);
std::string AreaTitle(AREA_ID area);

} // namespace Fructl
