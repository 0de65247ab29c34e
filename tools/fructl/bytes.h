// Runs of bytes and their hexadecimal forms.
#pragma once

#include "frudata/types.h"
#include "fruimage/bytes.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Fructl {

using BYTES = std::vector<UINT8>;
using BYTE_VIEW = std::span<const UINT8>;
using FruImage::Slice;

/// Upper-case pairs, `separator` between them.
std::string Hex(BYTE_VIEW bytes, std::string_view separator = {});
/// "1 byte", "2 bytes".
std::string Counted(std::size_t count, std::string_view unit);
/// Lines of offset, 16 bytes and their printable characters.
std::string HexDump(BYTE_VIEW bytes);
/// Bytes of hexadecimal text: pairs of digits, regardless of blanks, line ends and "0x" in front. Nothing for any
/// other text.
std::optional<BYTES> FromHex(std::string_view text);

/// A whole number, decimal or with "0x" in front, up to `maximum`; nothing for any other text.
std::optional<unsigned> ParseNumber(std::string_view text, unsigned maximum);

} // namespace Fructl
