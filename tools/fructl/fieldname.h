// The names by which people and scripts call areas and fields: AREA.FIELD.
#pragma once

#include "frudata/types.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Fructl {

enum class FIELD_KIND {
    TEXT,
    CHASSIS_TYPE,
    DATE
};

/// One fixed field of an info area. Its position among the rows of its area is its index in the table.
struct FIELD_ROW {
    const char* name;
    const char* title; ///< used where the library has no text
    FIELD_KIND kind;
};

/// One area. The info areas are those with fields.
struct AREA_ROW {
    FRU_AREA area;
    const char* name;
    const char* title;
    std::size_t headerByte;   ///< byte of the common header that holds the area's offset
    std::size_t headerLength; ///< bytes before the first type/length byte; 0: not an info area
    std::span<const FIELD_ROW> fields;
};

/// The five areas in the order of the common header's offsets.
std::span<const AREA_ROW> Areas();
/// The row of `area`, which must be one of the five.
const AREA_ROW& AreaRow(FRU_AREA area);
/// "board", "product", ..., and "header".
std::string_view AreaName(FRU_AREA area);
/// The area of a name, the common header included.
std::optional<FRU_AREA> AreaFromName(std::string_view name);

/// What an AREA.FIELD name stands for.
struct FIELD_NAME {
    enum PART {
        FIXED,    ///< the fixed field `index`
        CUSTOM,   ///< the custom field `index`, 0 being the first of the image
        LANGUAGE, ///< the language code of the board or product area; cannot be set
        DATA      ///< the bytes of the header, internal use or multi-record area; cannot be set
    };
    FRU_AREA area;
    PART part;
    std::size_t index;
    std::string text; ///< the name itself

    bool operator==(const FIELD_NAME& other) const {
        return area == other.area && part == other.part && index == other.index;
    }
};

/// Reads an AREA.FIELD name. @throws CToolError for a name that does not exist
FIELD_NAME ParseFieldName(std::string_view text);
/// The AREA.FIELD name of field `position` of an info area, the custom fields following the fixed ones.
std::string FieldName(const AREA_ROW& row, std::size_t position);

} // namespace Fructl
