// A repair while it is being made.
#pragma once

#include "fruimage/image.h"
#include "fruimage/plan.h"
#include "fruimage/result.h"

namespace FruImage {

struct MENDING {
    BYTES bytes; ///< the image with what is mended so far
    std::vector<CHANGE> changes;

    /// Writes the bytes at their place, and says why.
    void Put(AREA_ID area, std::size_t offset, BYTE_VIEW what, std::string why);
    /// Puts a checksum at `offset` that makes the bytes of `range` sum to 0, and says so with `name` in front.
    void PutChecksum(AREA_ID area, const RANGE& range, std::size_t offset, const std::string& name);
};

using FAULT = std::optional<ERROR>;

/// A header from the areas that were found behind the damaged one.
FAULT MendHeader(MENDING& mending, const FRU& fru);
/// An offset in a sound header that points into another area.
FAULT MendOffset(MENDING& mending, const FRU& fru, const AREA& area);
FAULT MendInfoArea(MENDING& mending, const FRU& fru, const AREA& area);
void MendRecords(MENDING& mending, const AREA& area);

} // namespace FruImage
