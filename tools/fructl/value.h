// Field values: bytes to text for people and programs, and text from the command line to bytes.
#pragma once

#include "tools/fructl/fru.h"

#include <string>
#include <string_view>

namespace Fructl {

/// The value as UTF-8: text, chassis type by name, date as ISO 8601 UTC, binary as hexadecimal pairs.
std::string DecodeValue(const FIELD& field);
/// "text", "6-bit", "bcd+", "binary", "date", "chassis-type".
std::string_view TypeName(const FIELD& field);

/// ISO 8601 UTC of the three date bytes (minutes since 1996-01-01 00:00); "unspecified" for zero.
std::string DecodeDate(BYTE_VIEW bytes);

/// Latin-1 bytes as UTF-8, control characters as \xNN.
std::string Utf8FromLatin1(BYTE_VIEW bytes);

/// The bytes that stand for `text` in a field of this kind. `name` is for messages.
/// @throws CToolError for what the field cannot hold; `force` admits one-character values
BYTES EncodeValue(FIELD_KIND kind, std::string_view text, const std::string& name, bool force);
/// Refuses bytes that cannot be set as the text of a field. @throws CToolError
void CheckText(BYTE_VIEW bytes, const std::string& name, bool force);

} // namespace Fructl
