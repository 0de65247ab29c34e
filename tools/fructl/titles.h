// What areas and fields are called in the language of this run.
#pragma once

#include "tools/fructl/fru.h"

#include <filesystem>
#include <string>

namespace Fructl {

/// The directory that holds the library's texts, one directory a language; empty where there is none.
std::filesystem::path DataDirectory();

/// The title of field `position` of an area; the tool's own where there is no text.
std::string Title(const AREA_ROW& row, std::size_t position);
std::string AreaTitle(AREA_ID area);

} // namespace Fructl
