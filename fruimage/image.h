// A FRU as the FRU Information Storage Definition has it, parsed from any bytes, with findings instead of failures.
// Everything here is a plain value and owns its bytes.
#pragma once

#include "fruimage/bytes.h"
#include "fruimage/names.h"
#include "fruimage/value.h"

#include <array>
#include <string>
#include <vector>

namespace FruImage {

enum class SEVERITY : std::uint8_t {
    NOTE,  ///< unusual, but nothing is lost and everything can be changed
    DAMAGE ///< against the format: the area is locked for changes until it is repaired
};

/// One deviation from the format.
///
/// | code | severity | what |
/// |---|---|---|
/// | blank | note | every byte is 00h, or every byte is FFh |
/// | header-short | damage | fewer than 8 bytes |
/// | not-a-fru | damage | another format version, and nothing of a FRU was found |
/// | header-version | damage | another format version, but areas were found |
/// | header-checksum | damage | |
/// | header-reserved | note | reserved bits or the pad byte are not zero |
/// | area-found | note | found by search behind a damaged header; not certain |
/// | area-ambiguous | damage | the search found more than one place for the area, or more than one area for the place |
/// | area-past-end | damage | it, or one of its records, begins or ends past the end of the image |
/// | area-length-zero | damage | |
/// | area-version | note | another format version in the area's first byte; its checksum tells whether that is damage |
/// | internal-version | note | the same of the internal use area, whose content is its maker's |
/// | no-end-marker | damage | the fields pass the end of the area |
/// | fields-end-early | note | the end marker stands in place of a predefined field |
/// | padding | note | bytes behind the end marker are not zero |
/// | area-checksum | damage | |
/// | areas-overlap | damage | |
/// | record-header-checksum | damage | |
/// | record-checksum | damage | |
/// | record-version | note | a record of another format version than 2 |
/// | no-end-of-list | note or damage | no record is the last; a note where zeroes follow, as an empty record |
/// | odd-text | note | two-byte text with an odd number of bytes |
/// | gap-not-empty | note | bytes that belong to no area are neither all 00h nor all FFh |
struct FINDING {
    SEVERITY severity = SEVERITY::NOTE;
    std::string code; ///< fixed word for programs
    AREA_ID area = AREA_ID::HEADER;
    std::size_t offset = 0; ///< in the image: the first byte concerned
    BYTES found;            ///< the bytes there; empty where it concerns none in particular
    BYTES expected;         ///< the right bytes; empty where they are not certain
    std::string text;       ///< for people: one clause, without the area's name and without a full stop
};

/// One field of an info area.
struct FIELD {
    FIELD_KIND kind = FIELD_KIND::TEXT;
    ENCODING encoding = ENCODING::TEXT; ///< TEXT kind only
    BYTE typeLength = 0;                ///< as stored; 0 for the chassis type and the date
    std::size_t offset = 0;             ///< in the image: of the first value byte, behind the type/length byte
    BYTES bytes;                        ///< the value's bytes, as many as are there
    bool cut = false;                   ///< the area, or the image, ends inside it
    std::string text;                   ///< UTF-8: DecodeText, DateText or ChassisTypeText of the bytes
};

/// One multi-record (section 16).
struct RECORD {
    std::size_t offset = 0; ///< in the image: of its header
    std::array<BYTE, RECORD_HEADER_SIZE> header{};
    BYTES data;           ///< as far as it is there
    bool cut = false;     ///< the image ends inside it
    bool closing = false; ///< an empty record that only ends the list, such as 82 00 00 7E 00
    BYTE expectedHeaderChecksum = 0;
    BYTE expectedChecksum = 0;

    BYTE Type() const { return header[0]; }
    BYTE Format() const { return header[1] & 0x0F; }
    bool IsLast() const { return (header[1] & 0x80) != 0; }
    BYTE Length() const { return header[2]; } ///< as claimed
    BYTE Checksum() const { return header[3]; }
    BYTE HeaderChecksum() const { return header[4]; }
    /// A closing record has no data, so its data checksum does not count.
    bool IsSound() const {
        return !cut && HeaderChecksum() == expectedHeaderChecksum && (closing || Checksum() == expectedChecksum);
    }
    std::size_t Size() const { return RECORD_HEADER_SIZE + data.size(); }
};

/// One area.
struct AREA {
    AREA_ID id = AREA_ID::HEADER;
    bool certain = true;      ///< named by a sound header; false: found by search
    bool damaged = false;     ///< a finding of severity DAMAGE concerns it
    std::size_t offset = 0;   ///< in the image
    std::size_t declared = 0; ///< bytes that its length byte claims; elsewhere as `length`
    /// Its bytes: as declared, never past the image's end; internal use: up to the next area or the image's end;
    /// multi-record: up to the end of the last readable record.
    std::size_t length = 0;
    std::size_t room = 0; ///< bytes up to the next area or the image's end; at least `length`, except where
                          ///< areas overlap
    std::size_t used = 0; ///< of `length`: up to the end marker, and the checksum; without fields all of it

    // Info areas only.
    BYTE language = 0;         ///< 0 for the chassis, whose text is always English
    std::vector<FIELD> fields; ///< predefined ones, then custom ones; fewer than predefined where the list ends early
    bool ended = false;        ///< there is an end marker
    BYTES padding;             ///< bytes between the end marker and the checksum
    BYTE checksum = 0;         ///< as stored
    BYTE expectedChecksum = 0;

    // Multi-record area only.
    std::vector<RECORD> records;

    const AREA_ROW& Row() const { return AreaRow(id); }
    bool IsInfo() const { return Row().IsInfo(); }
    RANGE Range() const { return {offset, length}; }
    /// The number of custom fields.
    std::size_t CustomFields() const {
        return fields.size() > Row().fields.size() ? fields.size() - Row().fields.size() : 0;
    }
    /// Bytes by which its fields can grow inside the area.
    std::size_t Free() const { return length > used ? length - used : 0; }
};

enum class GAP_CONTENT : std::uint8_t {
    ZEROES,
    ONES,  ///< FFh: erased
    OTHER, ///< anything else, of unknown use
    UNREAD ///< at least partly not read from the device
};

/// Bytes that belong to no area.
struct GAP {
    std::size_t offset = 0;
    std::size_t length = 0;
    GAP_CONTENT content = GAP_CONTENT::ZEROES;
};

enum class STATE : std::uint8_t {
    FRU,            ///< the common header is sound; areas may be damaged
    BLANK,          ///< every byte is 00h, or every byte is FFh
    DAMAGED_HEADER, ///< areas were found by search
    NOT_A_FRU       ///< nothing of a FRU was found
};

/// A place where an area may be, according to the search behind a damaged header.
struct CANDIDATE {
    AREA_ID id = AREA_ID::HEADER;
    std::size_t offset = 0;
    std::size_t length = 0;
    bool named = false; ///< the damaged header names this place for this area
};

struct FRU {
    STATE state = STATE::NOT_A_FRU;
    BYTES bytes;  ///< the image
    BYTES header; ///< its first 8 bytes, or fewer
    BYTE expectedHeaderChecksum = 0;
    std::vector<AREA> areas;           ///< in the order of the header's offsets
    std::vector<GAP> gaps;             ///< in the order of the image; what follows the last area is the last
    std::vector<CANDIDATE> candidates; ///< DAMAGED_HEADER only: everything that the search found
    std::vector<FINDING> findings;

    /// The area, or null.
    const AREA* Find(AREA_ID area) const;
    /// FIXED and CUSTOM only; null where there is no such field, or the list ends before it.
    const FIELD* Find(const FIELD_NAME& name) const;
    /// Whether it is a FRU without a finding of severity DAMAGE.
    bool IsSound() const;
    /// The bytes of an area, or of any range, cut at the image's end. Valid as long as `bytes` is unchanged.
    BYTE_VIEW View(const RANGE& range) const { return Slice(bytes, range.offset, range.length); }
};

/// Parses an image. Total: any bytes give a FRU, whose `bytes` are `image`.
FRU Parse(BYTE_VIEW image);
/// The same for an image of which only the ranges `read` were read from the device.
FRU Parse(BYTE_VIEW image, std::span<const RANGE> read);

/// The ranges of a device to read next so that Parse sees every area: first the header, then the areas' first bytes,
/// then the areas; everything if the header is damaged. Call it again with those ranges in `read` until it returns
/// none.
/// @param image as many bytes as the device has; only those in `read` are looked at
/// @param read ranges that were read, in any order
std::vector<RANGE> WantedRanges(BYTE_VIEW image, std::span<const RANGE> read);

} // namespace FruImage
