// Descriptions to bytes, an area at a time; and areas to descriptions.
#pragma once

#include "fruimage/description.h"

namespace FruImage {

/// Whether a stored one-byte text would read as the end marker.
inline bool ReadsAsEnd(const FIELD_DESCRIPTION& field) {
    return TypeLength(field.encoding, field.bytes.size()) == END_OF_FIELDS;
}
/// The fewest bytes that the area needs: of an info area up to its checksum, not rounded up.
std::size_t NeededSize(const AREA_DESCRIPTION& area);
/// All bytes of the area. BAD_DESCRIPTION: the format cannot hold it.
Result<BYTES> ComposeArea(const AREA_DESCRIPTION& area);
/// The bytes of a record. `isLast` marks the last of its chain if its flags do not.
void AppendRecord(BYTES& chain, const RECORD_DESCRIPTION& record, bool isLast);
/// The area as its parts if Build makes the same bytes of them, else as its bytes.
AREA_DESCRIPTION DescribeArea(const FRU& fru, const AREA& area);

} // namespace FruImage
