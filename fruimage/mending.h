// A repair in progress.
#pragma once

#include "fruimage/image.h"
#include "fruimage/plan.h"
#include "fruimage/result.h"

namespace FruImage {

struct MENDING {
    BYTES bytes; ///< the image with the repairs so far
    std::vector<CHANGE> changes;

    /// Writes the bytes at their place and records the reason.
    void Put(AREA_ID area, std::size_t offset, BYTE_VIEW what, std::string why);
    /// Puts a checksum at `offset` that makes the bytes of `range` sum to 0, and records that under `name`.
    void PutChecksum(AREA_ID area, const RANGE& range, std::size_t offset, const std::string& name);
};

/// A header from the areas that were found behind the damaged one.
FAULT MendHeader(MENDING& mending, const FRU& fru);
/// An offset in a sound header that points into another area.
FAULT MendOffset(MENDING& mending, const FRU& fru, const AREA& area);
FAULT MendInfoArea(MENDING& mending, const FRU& fru, const AREA& area);
void MendRecords(MENDING& mending, const AREA& area);

} // namespace FruImage
