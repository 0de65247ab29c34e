// Texts of multi-record fields: helpers that know nothing of records.
#pragma once

#include "fruimage/records/recordform.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace FruRecords {

/// Pairs of upper-case digits, `separator` between them.
std::string HexText(BYTE_VIEW bytes, std::string_view separator);
/// Pairs of digits with or without spaces between them.
std::optional<BYTE_VECTOR> ParseHex(std::string_view text);

/// Latin-1 as UTF-8. Control characters come out as \xNN, and so does a backslash that would begin such a text.
std::string Utf8FromLatin1(BYTE_VIEW bytes);
/// The reverse; nothing for a character outside Latin-1.
std::optional<BYTE_VECTOR> Latin1FromUtf8(std::string_view text);

/// 16 bytes as SMBIOS stores them, as 00112233-4455-6677-8899-AABBCCDDEEFF.
std::string UuidText(BYTE_VIEW bytes);
std::optional<BYTE_VECTOR> ParseUuid(std::string_view text);

/// `number` / 10^places with all its places.
std::string DecimalText(std::int64_t number, unsigned int places);
/// The number of "-0.6" (-60 with two places). Nothing for more places or no number.
std::optional<std::int64_t> ParseDecimal(std::string_view text, unsigned int places);
/// "0x1F", "1Fh", or decimal digits.
std::optional<std::int64_t> ParseInteger(std::string_view text);

std::string_view TrimSpaces(std::string_view text);
/// Regardless of the case of ASCII letters.
bool IsSameWord(std::string_view left, std::string_view right);

} // namespace FruRecords
