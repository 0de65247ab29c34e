#include "tools/fructl/bytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>

namespace Fructl {

std::string Hex(BYTE_VIEW bytes, std::string_view separator) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string text;
    for (const UINT8 byte : bytes) {
        if (!text.empty())
            text += separator;
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 0x0F];
    }
    return text;
}

std::string Counted(std::size_t count, std::string_view unit) {
    return fmt::format("{} {}{}", count, unit, count == 1 ? "" : "s");
}

std::string HexDump(BYTE_VIEW bytes) {
    constexpr std::size_t ROW = 16;
    std::string text;
    for (std::size_t offset = 0; offset < bytes.size(); offset += ROW) {
        const BYTE_VIEW row = Slice(bytes, offset, ROW);
        std::string characters;
        for (const UINT8 byte : row)
            characters += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
        text += fmt::format("{:04X}  {:<47}  {}\n", offset, Hex(row, " "), characters);
    }
    return text;
}

std::optional<BYTES> FromHex(std::string_view text) {
    std::string digits;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (text.substr(position, 2) == "0x" && digits.size() % 2 == 0)
            ++position;
        else if (std::isxdigit(static_cast<unsigned char>(text[position])))
            digits += text[position];
        else if (!std::isspace(static_cast<unsigned char>(text[position])))
            return std::nullopt;
    }
    if (digits.size() % 2 != 0)
        return std::nullopt;
    BYTES bytes(digits.size() / 2);
    for (std::size_t position = 0; position < bytes.size(); ++position)
        std::from_chars(&digits[2 * position], &digits[2 * position] + 2, bytes[position], 16);
    return bytes;
}

std::optional<unsigned> ParseNumber(std::string_view text, unsigned maximum) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size() || number > maximum)
        return std::nullopt;
    return number;
}

} // namespace Fructl
