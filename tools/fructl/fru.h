// A FRU's contents, taken apart from raw bytes without the library: what is there, and what is wrong.
#pragma once

#include "tools/fructl/bytes.h"
#include "tools/fructl/fieldname.h"

#include <string>
#include <vector>

namespace Fructl {

/// Type codes of a type/length byte (FRU Information Storage Definition, section 13).
enum FIELD_TYPE : UINT8 {
    FIELD_BINARY = 0x00,
    FIELD_BCD_PLUS = 0x40,
    FIELD_6_BIT = 0x80,
    FIELD_8_BIT = 0xC0
};

constexpr UINT8 END_OF_FIELDS = 0xC1;
constexpr std::size_t HEADER_SIZE = 8;
constexpr std::size_t OFFSET_UNIT = 8;
constexpr std::size_t MAXIMUM_FIELD = 63;
constexpr std::size_t MAXIMUM_AREA = 512;
constexpr std::size_t RECORD_HEADER_SIZE = 5;

/// One field of an info area. The chassis type and the date have no type/length byte: 0 here.
struct FIELD {
    FIELD_KIND kind;
    UINT8 typeLength;
    BYTES data;

    FIELD_TYPE Type() const { return static_cast<FIELD_TYPE>(typeLength & 0xC0); }
    bool operator==(const FIELD& other) const { return data == other.data && (data.empty() || Type() == other.Type()); }
};

/// One area as found.
struct AREA {
    FRU_AREA id;
    std::size_t offset;                    ///< in the device image
    BYTES bytes;                           ///< the whole area, as far as it is there
    std::vector<FIELD> fields;             ///< fixed fields, then custom fields in the order of the image
    std::size_t used = 0;                  ///< bytes up to the end marker and the checksum
    UINT8 language = 0;                    ///< language code of a board or product area
    UINT8 checksum = 0;                    ///< the checksum it has
    UINT8 expectedChecksum = 0;            ///< the checksum it should have
    std::vector<std::size_t> records = {}; ///< multi-record area: offset of each record in `bytes`

    const AREA_ROW& Row() const { return AreaRow(id); }
    bool IsInfo() const { return Row().headerLength != 0; }
    std::size_t CustomFields() const { return fields.size() - Row().fields.size(); }
    /// Bytes that the fields of the area may still grow by.
    std::size_t Room() const { return bytes.size() > used ? bytes.size() - used : 0; }
};

/// One thing that is wrong.
struct PROBLEM {
    FRU_AREA area;
    std::string code; ///< short fixed word for programs
    std::string text; ///< for people
};

struct FRU {
    BYTES header;
    std::vector<AREA> areas;       ///< those that could be read, in the order of the header's offsets
    std::vector<PROBLEM> problems; ///< empty: the FRU is sound
    std::size_t size = 0;          ///< bytes of the image

    const AREA* Find(FRU_AREA area) const;
    /// The field of a name, or null. Not for LANGUAGE and DATA.
    const FIELD* Find(const FIELD_NAME& name) const;
    bool IsDamaged() const { return !problems.empty(); }
    void Report(FRU_AREA area, std::string code, std::string text);
    /// All problems in one line.
    std::string ProblemText() const;
};

/// Takes a device image apart.
FRU ParseImage(BYTE_VIEW image);
/// Whether `header` is 8 bytes with the right version and checksum; if not, `fru` says why.
bool CheckHeader(BYTE_VIEW header, FRU& fru);
/// Where the internal use area ends: at the next area as the library takes it. 0 where it is not known.
std::size_t InternalUseLength(BYTE_VIEW header);

/// Takes one info area apart, its length being that of `bytes`. Reports to `fru`.
AREA ParseInfoArea(const AREA_ROW& row, std::size_t offset, BYTE_VIEW bytes, FRU& fru);
/// Takes a chain of records apart, as far as its end-of-list bit or, where `whole`, to the last byte.
AREA ParseMultiRecordArea(std::size_t offset, BYTE_VIEW bytes, bool whole, FRU& fru);

} // namespace Fructl
