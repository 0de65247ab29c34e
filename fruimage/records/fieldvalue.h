// One field's bytes as a value and as text, and text as bytes again: the meaning of the kinds of fields.
#pragma once

#include "fruimage/records/recordform.h"
#include "fruimage/records/records.h"

#include <string>
#include <string_view>

namespace FruRecords {

/// The number at a place of at most 32 bits, which must lie within `data`.
std::uint32_t ReadNumber(PLACE place, BYTE_VIEW data);
void WriteNumber(PLACE place, std::uint32_t number, BYTE_VECTOR& data);

/// The field of a row whose place lies within `data`.
RECORD_FIELD ReadField(const FIELD_ROW& row, BYTE_VIEW data);
/// Sets the field of a row whose place lies within `data`; a rest gets the length of its new value.
/// @return false, and `data` as it was, where the text is none of the field's values
bool WriteField(const FIELD_ROW& row, std::string_view text, BYTE_VECTOR& data);
/// The values that the field takes: "0 to 4095 W".
std::string AcceptedValues(const FIELD_ROW& row);

} // namespace FruRecords
