// Makes a damaged FRU sound where only one way to do so is plausible.
#pragma once

#include "fruimage/image.h"
#include "fruimage/plan.h"
#include "fruimage/result.h"

namespace FruImage {

/// Puts right what the bytes leave no doubt about: checksums of header, areas and records whose structure is
/// plausible, an area's length where exactly one other gives a sound area, a header from areas that were found. Every
/// change is in the plan's `changes`, in words. What is left damaged is in its `notes`.
/// AMBIGUOUS: two candidates; both are named. NOTHING_TO_DO: sound, blank, or no damage of which the repair is certain.
Result<PLAN> Repair(const FRU& fru);

} // namespace FruImage
