// Lines for people: a field each, or several fields that are read together.
#pragma once

#include "fruimage/records/recordform.h"
#include "fruimage/records/records.h"

namespace FruRecords {

/// In the order of the fields. Fields share a line where all of them are there and have values; fields without any
/// bytes have none.
std::vector<RECORD_LINE> MakeLines(std::span<const LINE_ROW> rows, const std::vector<RECORD_FIELD>& fields);

} // namespace FruRecords
