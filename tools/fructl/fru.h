// The standard's view of a FRU (fruimage/) under the tool's names, and its state in words.
#pragma once

#include "fruimage/image.h"

#include "tools/fructl/bytes.h"

#include <initializer_list>
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
/// The value in the form that `set` takes: a chassis type as its name alone, or its number without one.
std::string BareValue(const FIELD& field);

/// The FRU in a few words: manufacturer and name of its product, or of its board; may be empty.
std::string ProductText(const FRU& fru);
/// The text of the first of these fields with one.
std::string FirstText(const FRU& fru, std::initializer_list<std::string_view> names);
/// "ok", "blank" or "damaged".
std::string_view StatusName(const FRU& fru);
/// All damage, or that the FRU is blank, in one line; empty for a sound one.
std::string ProblemText(const FRU& fru);
/// The same for one area: its own damage or, if it is missing, that of the header.
std::string ProblemText(const FRU& fru, AREA_ID area);

} // namespace Fructl
