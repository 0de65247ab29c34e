// Reading the readable source of a string table.
#pragma once

#include "tools/strc/texttable.h"

#include <istream>
#include <string>
#include <vector>

namespace Frudata_Private {

/// Reads a source: lines `number NAME "text"`, empty lines, and comments begun with '#'. The result has
/// every number up to the highest one known. Appends each fault to `faults` as "fileName:line: what";
/// the table may be used only if there is none.
TEXT_TABLE ReadSource(std::istream& source, const std::string& fileName, std::vector<std::string>& faults);

} // namespace Frudata_Private
