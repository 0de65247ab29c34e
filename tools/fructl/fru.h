// The standard's view of a FRU (fruimage/), by the names it has throughout the tool, and what is wrong with one in
// words.
#pragma once

#include "fruimage/image.h"

#include "tools/fructl/bytes.h"

#include <string>
#include <string_view>

namespace Fructl {

using FruImage::AREA;
using FruImage::AREA_ID;
using FruImage::AREA_ROW;
using FruImage::AreaName;
using FruImage::AreaRow;
using FruImage::Areas;
using FruImage::FIELD;
using FruImage::FIELD_KIND;
using FruImage::FIELD_NAME;
using FruImage::FIELD_ROW;
using FruImage::FINDING;
using FruImage::FRU;
using FruImage::RANGE;
using FruImage::RECORD;
using FruImage::SEVERITY;
using FruImage::STATE;

/// "text", "two-byte", "6-bit", "bcd+", "binary", "date", "chassis-type".
std::string_view TypeName(const FIELD& field);
/// The value as `set` takes it back: a chassis type by its name alone, or by its number where it has none.
std::string BareValue(const FIELD& field);

/// "ok", "blank" or "damaged".
std::string_view StatusName(const FRU& fru);
/// Every damage, or that the FRU is blank, in one line; empty where it is sound.
std::string ProblemText(const FRU& fru);
/// The same of one area: its own damage and, where it is not there, that of the header.
std::string ProblemText(const FRU& fru, AREA_ID area);

} // namespace Fructl
