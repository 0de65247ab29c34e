// Changes to a FRU: a pure function from a model and edits to a plan.
#pragma once

#include "fruimage/image.h"
#include "fruimage/plan.h"
#include "fruimage/result.h"

#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace FruImage {

/// Sets a predefined field, an existing custom field, the custom field just behind the last one, or the language
/// ("board.language"; number or name: texts are kept and written in the new language's encoding).
/// Adds a missing area. Fields between an early end of the list and this one become empty.
struct SET_FIELD {
    FIELD_NAME name = {};
    std::string text = {};                 ///< UTF-8; a date, a chassis type or a language as people write it
    std::optional<ENCODING> encoding = {}; ///< without one, the field's own if it can hold the value
};
/// The same with the value's bytes. TEXT and TWO_BYTE_TEXT are one type code: the area's language tells them apart.
struct SET_BYTES {
    FIELD_NAME name = {};
    ENCODING encoding = ENCODING::BINARY;
    BYTES bytes = {};
};
/// Adds a custom field behind the last one.
struct ADD_FIELD {
    AREA_ID area = AREA_ID::PRODUCT;
    std::string text = {};
    std::optional<ENCODING> encoding = {};
};
/// Removes a custom field; those behind it move down by one. A predefined field can only become empty.
struct REMOVE_FIELD {
    FIELD_NAME name = {};
};
/// Removes an area; its bytes stay, as unused ones.
struct REMOVE_AREA {
    AREA_ID area = AREA_ID::PRODUCT;
};
/// Replaces the bytes of the internal use area, its format version byte included. FIXED_SIZE for another
/// number of bytes without `resize`. Adds a missing area.
struct SET_INTERNAL {
    BYTES bytes = {};
    bool resize = false;
};
/// A record without its checksums and end-of-list bit, which follow from the rest.
struct RECORD_VALUE {
    BYTE type = 0;
    BYTE format = 2;
    BYTES data = {}; ///< 1 to 255 bytes
};
/// Adds a record behind the last one, before an empty closing one. Adds a missing area.
struct APPEND_RECORD {
    RECORD_VALUE record = {};
};
/// `index` counts from 0. A record with a wrong data checksum may be replaced or removed.
struct REPLACE_RECORD {
    std::size_t index = 0;
    RECORD_VALUE record = {};
};
struct REMOVE_RECORD {
    std::size_t index = 0;
};
/// Replaces all records; without any, removes the area.
struct REPLACE_RECORDS {
    std::vector<RECORD_VALUE> records = {};
};
/// Replaces the chain by the bytes of another one. BAD_VALUE unless they are a sound chain to the last byte.
struct SET_RECORD_BYTES {
    BYTES bytes = {};
};

using EDIT = std::variant<SET_FIELD, SET_BYTES, ADD_FIELD, REMOVE_FIELD, REMOVE_AREA, SET_INTERNAL, APPEND_RECORD,
                          REPLACE_RECORD, REMOVE_RECORD, REPLACE_RECORDS, SET_RECORD_BYTES>;

struct LIMITS {
    /// Bytes of the device. 0: as many as the format can address; else an image that is longer already may not grow.
    std::size_t deviceSize = 0;
    /// Bytes of padding in a new area, before rounding up to 8, for its fields to grow.
    std::size_t spare = 0;
};

/// Makes all edits, in their order, or none.
///
/// An area that outgrows its room takes its own padding, then unused bytes behind it, then later areas move up in
/// 8-byte steps, as few of them and as little as possible. The internal use area stays; an area that would run into it
/// goes behind it. Areas never shrink or move down. A new area goes to the first unused place that holds it. Bytes
/// that no edit names stay, unused ones included, and move with their area. Setting the present value changes nothing.
/// A blank image becomes a FRU with its first area.
/// DAMAGED: the header, or an area that an edit names. Damaged areas may move, as they are.
/// NO_ROOM, NOT_ADDRESSABLE, FIXED_SIZE, NO_SUCH_FIELD, BAD_VALUE: as in result.h.
Result<PLAN> Apply(const FRU& fru, std::span<const EDIT> edits, const LIMITS& limits = {});

} // namespace FruImage
