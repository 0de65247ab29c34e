// An image as a list of what it holds, from which it can be built: what a FRU is made of from nothing, and what JSON
// carries. Sums, lengths and offsets follow from the rest where they are left out.
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
    std::optional<BYTE> checksum = {}; ///< of the data, where it is not what it should be
};

struct AREA_DESCRIPTION {
    AREA_ID id = AREA_ID::PRODUCT;
    std::optional<std::size_t> offset = {}; ///< a multiple of 8; without it, behind the area before in the list
    std::size_t length = 0;                 ///< info areas: a multiple of 8; 0: as long as it must be and `spare`
    std::size_t spare = 0;                  ///< at least so many bytes of padding, where `length` is 0

    // Info areas.
    BYTE version = 1; ///< first byte: the format version and four reserved bits
    BYTE language = 0;
    /// The chassis type (1 byte) and the board's date (3 bytes) first, then the predefined fields, then custom ones.
    /// Fewer than predefined: the rest are empty, or, where `endsEarly`, the end marker stands there.
    std::vector<FIELD_DESCRIPTION> fields = {};
    bool endsEarly = false;
    BYTES padding = {}; ///< the first bytes behind the end marker, where they are not zero

    // Multi-record area.
    std::vector<RECORD_DESCRIPTION> records = {};

    /// The bytes of the internal use area, its format version included; of any other area, all of its bytes as they
    /// are, damaged ones too: nothing else of the description counts then.
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

/// The description of a FRU. Of a sound one, Build makes the same bytes again; so it does with damaged areas, which
/// are described by their bytes. DAMAGED: the header, areas that overlap or begin past the end. A blank image has a
/// description without areas only where it is of no bytes at all; DAMAGED otherwise.
Result<DESCRIPTION> Describe(const FRU& fru);
/// The image. BAD_DESCRIPTION: an area twice, areas that overlap, an offset or a length that the format cannot hold,
/// a text of one byte. NO_ROOM: over `size`.
Result<BYTES> Build(const DESCRIPTION& description);

} // namespace FruImage
