// Texts between UTF-8 and the 16-bit characters of a compiled table.
#pragma once

#include <string>
#include <string_view>

namespace Frudata_Private {

/// Converts `text` to 16-bit characters. @return null, or why the text cannot stand in a table
const char* DecodeUtf8(std::string_view text, std::u16string& characters);

/// Converts characters without surrogates to UTF-8; a surrogate becomes U+FFFD.
std::string EncodeUtf8(std::u16string_view characters);

} // namespace Frudata_Private
