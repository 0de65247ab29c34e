// Lines for people: one field each, or several that belong together.
#pragma once

#include "fruimage/records/recordform.h"
#include "fruimage/records/records.h"

namespace FruRecords {

/// In the order of the fields. Fields share a line if all of them are there and have values; a field without bytes has
/// no line.
std::vector<RECORD_LINE> MakeLines(std::span<const LINE_ROW> rows, const std::vector<RECORD_FIELD>& fields);

} // namespace FruRecords
