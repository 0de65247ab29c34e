// Makes a damaged FRU sound where only one way to do so is plausible.
#pragma once

#include "fruimage/image.h"
#include "fruimage/plan.h"
#include "fruimage/result.h"

namespace FruImage {

/// Repairs damage whose repair is certain: checksums of header, areas and records of plausible structure; an area's
/// length where exactly one other makes a sound area; a header from the areas found. The plan's `changes` tell each
/// repair in words, its `notes` the damage that remains.
/// AMBIGUOUS: two candidates, both named. NOTHING_TO_DO: sound, blank, or no certain repair.
Result<PLAN> Repair(const FRU& fru);

} // namespace FruImage
