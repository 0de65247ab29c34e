// Values of fields: bytes to UTF-8 text and back (FRU Information Storage Definition, sections 11, 13 and 15).
#pragma once

#include "fruimage/bytes.h"
#include "fruimage/result.h"

#include <optional>
#include <string>
#include <string_view>

namespace FruImage {

enum class ENCODING : std::uint8_t {
    BINARY,       ///< type code 00b: bytes, shown as hexadecimal pairs
    BCD_PLUS,     ///< 01b: two characters a byte of 0-9, blank, dash, period
    SIX_BIT,      ///< 10b: four characters in three bytes, blank to underscore
    TEXT,         ///< 11b in an English area: a byte a character, Latin-1
    TWO_BYTE_TEXT ///< 11b in an area of another language: UCS-2, least significant byte first
};

/// The type/length byte that reads as the end of an area's fields.
constexpr BYTE END_OF_FIELDS = 0xC1;
/// The type/length byte of an empty field.
constexpr BYTE EMPTY_FIELD = 0xC0;

/// Whether text of this language has a byte a character: codes 0 and 25, both English.
constexpr bool IsEnglish(BYTE language) {
    return language == 0 || language == 25;
}
/// The encoding of a type/length byte in an area of this language.
ENCODING EncodingOf(BYTE typeLength, BYTE language);
/// The type/length byte of `length` bytes, at most 63, in this encoding.
BYTE TypeLength(ENCODING encoding, std::size_t length);
/// "binary", "bcd+", "6-bit", "text", "two-byte".
std::string_view EncodingName(ENCODING encoding);
/// The encoding of such a name.
std::optional<ENCODING> EncodingFromName(std::string_view name);

/// The value as UTF-8. Binary: hexadecimal pairs with blanks between them. Control characters of text appear as
/// \xNN, code units that are no character as \uNNNN, reserved digits of BCD plus as '?'. Fill at the end does not
/// count: zeroes of text, blanks of 6-bit and of BCD plus.
std::string DecodeText(ENCODING encoding, BYTE_VIEW bytes);

/// The encoded value of a field.
struct FIELD_VALUE {
    ENCODING encoding = ENCODING::TEXT;
    BYTES bytes;
};

/// Encodes UTF-8 `text` in exactly this encoding. BINARY takes hexadecimal digits, blanks between pairs allowed.
/// BAD_VALUE: a character that the encoding lacks (control characters always), not UTF-8, more than 63 bytes, or one
/// byte of text, which would read as the end of the fields.
Result<FIELD_VALUE> EncodeText(std::string_view text, ENCODING encoding);
/// Encodes `text` in the encoding `before` if that can hold it, else as the area's text; in 6-bit or BCD plus if the
/// text is of one byte or too long otherwise. Binary stays binary for hexadecimal pairs only. BAD_VALUE if no encoding
/// holds it.
Result<FIELD_VALUE> EncodeKeeping(std::string_view text, ENCODING before, BYTE language);

/// ISO 8601 UTC of the three bytes of a date, "2026-05-31T14:30Z"; "unspecified" for 000000h and FFFFFFh.
std::string DateText(BYTE_VIEW bytes);
/// The three bytes of "2026-05-31", "2026-05-31T14:30[:00][Z]" (UTC) or "unspecified". BAD_VALUE: no date of the
/// calendar, seconds, or outside the 24 bits of minutes since 1996-01-01T00:00Z. Callers resolve `now`.
Result<BYTES> ParseDate(std::string_view text);
/// The byte of a number (decimal, or hexadecimal with 0x) or of a name; BAD_VALUE for a name the standard lacks.
Result<BYTES> ParseChassisType(std::string_view text);

} // namespace FruImage
