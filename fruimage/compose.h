// Descriptions to bytes, an area at a time; and areas to descriptions.
#pragma once

#include "fruimage/description.h"

namespace FruImage {

ERROR Refuse(REFUSAL code, AREA_ID area, std::string text, std::string hint = {});

/// Whether a stored one-byte text would read as the end marker.
inline bool ReadsAsEnd(const FIELD_DESCRIPTION& field) {
    return TypeLength(field.encoding, field.bytes.size()) == END_OF_FIELDS;
}
/// Bytes that the area needs at least: up to its checksum, and not rounded up, for an info area.
std::size_t NeededSize(const AREA_DESCRIPTION& area);
/// All bytes of the area. BAD_DESCRIPTION
Result<BYTES> ComposeArea(const AREA_DESCRIPTION& area);
/// The bytes of a record. `isLast`: the last of its chain, where its flags do not say so.
void AppendRecord(BYTES& chain, const RECORD_DESCRIPTION& record, bool isLast);
/// The area as its parts, where Build makes the same bytes of them; else as its bytes.
AREA_DESCRIPTION DescribeArea(const FRU& fru, const AREA& area);

} // namespace FruImage
