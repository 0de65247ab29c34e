// The areas of a FRU and their predefined fields: one table, and their AREA.FIELD names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace FruImage {

/// The value is the byte of the common header that holds the area's offset (FRU Information Storage
/// Definition, section 8).
enum class AREA_ID : std::uint8_t {
    HEADER = 0, ///< the common header itself
    INTERNAL_USE = 1,
    CHASSIS = 2,
    BOARD = 3,
    PRODUCT = 4,
    MULTIRECORD = 5
};

enum class FIELD_KIND : std::uint8_t {
    TEXT,         ///< has a type/length byte
    CHASSIS_TYPE, ///< one byte, SMBIOS enclosure type
    DATE          ///< three bytes, minutes since 1996-01-01T00:00Z, least significant first
};

/// One predefined field. Its position among the rows of its area is its index everywhere.
struct FIELD_ROW {
    const char* name;  ///< "serial-number"
    const char* title; ///< "Board serial number"
    FIELD_KIND kind;
};

/// One area.
struct AREA_ROW {
    AREA_ID id;
    const char* name;         ///< "board"
    const char* title;        ///< "Board info area"
    std::size_t headerLength; ///< bytes in front of the first type/length byte; 0: not an info area
    bool hasLanguage;         ///< whether its third byte is a language code
    std::span<const FIELD_ROW> fields;

    /// Chassis, board and product: format version, length, fields, end marker, checksum.
    bool IsInfo() const { return headerLength != 0; }
    /// Fields in front of those with a type/length byte: 1 (chassis type, date) or 0.
    std::size_t LeadingFields() const { return fields.empty() || fields[0].kind == FIELD_KIND::TEXT ? 0 : 1; }
};

/// The five areas in the order of the common header's offsets.
std::span<const AREA_ROW> Areas();
/// The row of an area. AREA_ID::HEADER, and a number of no area, has the row "header" without fields.
const AREA_ROW& AreaRow(AREA_ID area);
/// "header", "internal", "chassis", "board", "product", "multirecord".
std::string_view AreaName(AREA_ID area);
/// The area of such a name.
std::optional<AREA_ID> AreaFromName(std::string_view name);

/// The meaning of an AREA.FIELD name.
struct FIELD_NAME {
    enum PART : std::uint8_t {
        FIXED,    ///< the predefined field `index`
        CUSTOM,   ///< the custom field `index`, 0 being the first of the area ("custom1")
        LANGUAGE, ///< the language code of the board or product area
        DATA      ///< the bytes of the header, the internal use area or the multi-record area
    };
    AREA_ID area = AREA_ID::HEADER;
    PART part = DATA;
    std::size_t index = 0;

    bool operator==(const FIELD_NAME&) const = default;
    /// The position in the area's list of fields; FIXED and CUSTOM only.
    std::size_t Position() const;
};

/// "board.serial-number", "product.custom3", "board.language", "internal.data"; nothing for any other text.
/// Custom fields are numbered 1 to 2040.
std::optional<FIELD_NAME> ParseFieldName(std::string_view text);
/// The reverse.
std::string FieldNameText(const FIELD_NAME& name);
/// The name of field `position` of an info area, the custom fields following the predefined ones.
FIELD_NAME FieldAt(AREA_ID area, std::size_t position);
/// "Board serial number"; "Custom field 3" for a custom field.
std::string FieldTitle(const FIELD_NAME& name);

/// SMBIOS enclosure type (DSP0134, System Enclosure or Chassis Types), 1 to 36; empty for any other number.
std::string_view ChassisTypeName(std::uint8_t type);
/// The chassis type of a name, regardless of case, blanks and hyphens.
std::optional<std::uint8_t> ChassisTypeFromName(std::string_view name);
/// "Rack mount chassis (23)"; "type 200" where there is no name.
std::string ChassisTypeText(std::uint8_t type);

/// Name of a language code (section 15), 0 to 136; empty where undefined.
std::string_view LanguageName(std::uint8_t code);
/// The code of a language's name, regardless of case, blanks and hyphens.
std::optional<std::uint8_t> LanguageFromName(std::string_view name);

} // namespace FruImage
