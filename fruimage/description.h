// An image as a list of its contents, from which Build makes it: for new FRUs and for JSON. Omitted checksums, lengths
// and offsets follow from the rest.
#pragma once

#include "fruimage/image.h"
#include "fruimage/result.h"

#include <optional>
#include <string>
#include <vector>

namespace FruImage {

struct FIELD_DESCRIPTION {
    FIELD_DESCRIPTION() = default;
    FIELD_DESCRIPTION(const char* latin1) : FIELD_DESCRIPTION(std::string(latin1)) {}
    FIELD_DESCRIPTION(const std::string& latin1) : bytes(latin1.begin(), latin1.end()) {}
    FIELD_DESCRIPTION(ENCODING fieldEncoding, BYTES fieldBytes)
        : encoding(fieldEncoding), bytes(std::move(fieldBytes)) {}

    /// Not for the chassis type and the date. TEXT and TWO_BYTE_TEXT are one type code.
    ENCODING encoding = ENCODING::TEXT;
    BYTES bytes = {}; ///< as stored, 0 to 63
};

struct RECORD_DESCRIPTION {
    BYTE type = 0;
    std::optional<BYTE> flags = {};    ///< second header byte; without it format 2, and end of list in the last record
    BYTES data = {};                   ///< 0 to 255
    std::optional<BYTE> checksum = {}; ///< of the data, where it is wrong
};

struct AREA_DESCRIPTION {
    AREA_ID id = AREA_ID::PRODUCT;
    std::optional<std::size_t> offset = {}; ///< a multiple of 8; without it, behind the area before in the list
    std::size_t length = 0;                 ///< info areas: a multiple of 8; 0: the shortest, and `spare`
    std::size_t spare = 0;                  ///< bytes of padding at least, where `length` is 0

    // Info areas.
    BYTE version = 1; ///< first byte: the format version and four reserved bits
    BYTE language = 0;
    /// The chassis type (1 byte) or the board's date (3 bytes), then the predefined fields, then custom ones. If there
    /// are fewer than predefined, the rest are empty or, with `endsEarly`, the end marker takes their place.
    std::vector<FIELD_DESCRIPTION> fields = {};
    bool endsEarly = false;
    BYTES padding = {}; ///< the first bytes behind the end marker, where they are not zero

    // Multi-record area.
    std::vector<RECORD_DESCRIPTION> records = {};

    /// The bytes of the internal use area, its format version included. Of any other area all bytes, damaged ones too:
    /// the rest of its description then does not count.
    BYTES bytes = {};
};

/// Bytes that belong to no area and are not `fill`.
struct GAP_DESCRIPTION {
    std::size_t offset = 0;
    BYTES bytes = {};
};

struct DESCRIPTION {
    std::size_t size = 0; ///< bytes of the image, below 16 MiB; 0: up to its last area
    BYTE fill = 0;        ///< what unused bytes hold
    BYTE version = 1;     ///< first byte of the header: the format version and four reserved bits
    BYTE pad = 0;         ///< seventh byte of the header
    std::vector<AREA_DESCRIPTION> areas = {};
    std::vector<GAP_DESCRIPTION> gaps = {};
};

/// The description of a FRU, of which Build makes the same bytes again: damaged areas are described by their bytes.
/// DAMAGED: the header is, or areas overlap or begin past the end. An image without bytes has a description without
/// areas; any other blank image is DAMAGED.
Result<DESCRIPTION> Describe(const FRU& fru);
/// The image. BAD_DESCRIPTION: an area twice, areas that overlap, an offset or a length that the format cannot hold,
/// a text of one byte. NO_ROOM: over `size`.
Result<BYTES> Build(const DESCRIPTION& description);

} // namespace FruImage
