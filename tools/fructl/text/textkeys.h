// The words of the FRU text file.
#pragma once

#include "fruimage/names.h"

#include <string_view>

namespace Fructl {

inline constexpr std::string_view TAG = "_SEE_";
inline constexpr std::string_view COMMENT = "//";
inline constexpr char QUOTE = '\'';
inline constexpr std::string_view BLANKS = " \t";

/// The line that opens the block of an area, the common header included.
constexpr std::string_view AreaTag(FruImage::AREA_ID area) {
    switch (area) {
    case FruImage::AREA_ID::INTERNAL_USE:
        return "_SEE_INTERNAL";
    case FruImage::AREA_ID::CHASSIS:
        return "_SEE_CHASSIS";
    case FruImage::AREA_ID::BOARD:
        return "_SEE_BOARD";
    case FruImage::AREA_ID::PRODUCT:
        return "_SEE_PRODUCT";
    case FruImage::AREA_ID::MULTIRECORD:
        return "_SEE_MULTIREC";
    default:
        return "_SEE_COMMON";
    }
}

} // namespace Fructl
