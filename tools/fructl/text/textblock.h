// The lines of an area block: what one line of a written file holds.
#pragma once

#include "fruimage/image.h"

#include <string>
#include <vector>

namespace Fructl {

/// One data line as bytes.
struct BLOCK_ITEM {
    FruImage::BYTES bytes;
    bool quoted = false; ///< as text in quotes; else as hexadecimal pairs
    std::string comment; ///< behind it, where the bytes alone tell a person little; may be empty
};

/// The bytes of an area's block: an info area without what is implied.
FruImage::BYTES BlockBytes(const FruImage::FRU& fru, const FruImage::AREA& area);
/// The same, cut into lines.
std::vector<BLOCK_ITEM> BlockItems(const FruImage::FRU& fru, const FruImage::AREA& area);
/// The common header's.
std::vector<BLOCK_ITEM> HeaderItems(const FruImage::FRU& fru);

/// Whether a quoted line can stand for the bytes: no quote, comment or key of the format, printable ASCII.
bool CanBeQuoted(FruImage::BYTE_VIEW bytes);
/// The code of a line: the text in quotes, or hexadecimal pairs.
std::string ItemCode(FruImage::BYTE_VIEW bytes, bool quoted);

} // namespace Fructl
