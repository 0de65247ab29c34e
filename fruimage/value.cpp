#include "fruimage/value.h"

#include "fruimage/text.h"

#include <array>

namespace FruImage {

namespace {

constexpr std::array<std::string_view, 5> ENCODING_NAMES = {"binary", "bcd+", "6-bit", "text", "two-byte"};

std::string DecodeBcdPlus(BYTE_VIEW bytes) {
    constexpr std::string_view BCD_PLUS = "0123456789 -.???";
    std::string text;
    for (const BYTE byte : bytes) {
        text += BCD_PLUS[byte >> 4];
        text += BCD_PLUS[byte & 0x0F];
    }
    return text;
}

/// Six bits a character, the first in the lowest bits; 0 is the blank.
std::string DecodeSixBit(BYTE_VIEW bytes) {
    std::string text;
    unsigned bits = 0;
    unsigned count = 0;
    for (const BYTE byte : bytes) {
        bits |= static_cast<unsigned>(byte) << count;
        for (count += 8; count >= 6; count -= 6) {
            text += static_cast<char>(' ' + (bits & 0x3F));
            bits >>= 6;
        }
    }
    return text;
}

void AppendUnit(std::string& text, unsigned unit) {
    const auto low = static_cast<BYTE>(unit);
    const BYTE both[] = {static_cast<BYTE>(unit >> 8), low};
    const auto continued = [](unsigned bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0))
        text += "\\x" + Hex({&low, 1});
    else if (unit < 0x80)
        text += static_cast<char>(unit);
    else if (unit < 0x800)
        text += {static_cast<char>(0xC0 | (unit >> 6)), continued(unit)};
    else if ((unit >= 0xD800 && unit < 0xE000) || unit >= 0xFFFE)
        text += "\\u" + Hex(both, "");
    else
        text += {static_cast<char>(0xE0 | (unit >> 12)), continued(unit >> 6), continued(unit)};
}

std::string DecodeUnits(BYTE_VIEW bytes, std::size_t width) {
    const auto unit = [&](std::size_t at) { return bytes[at] + (width == 2 ? bytes[at + 1] * 0x100U : 0U); };
    const std::size_t odd = bytes.size() % width;
    std::size_t end = bytes.size() - odd;
    while (end > 0 && odd == 0 && unit(end - width) == 0)
        end -= width;
    std::string text;
    for (std::size_t at = 0; at < end; at += width)
        AppendUnit(text, unit(at));
    // Half a character counts only if it is not zero.
    if (odd != 0 && bytes.back() != 0)
        text += "\\x" + Hex(bytes.last(1));
    return text;
}

std::string WithoutFill(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace

ENCODING EncodingOf(BYTE typeLength, BYTE language) {
    const auto encoding = static_cast<ENCODING>(typeLength >> 6);
    return encoding == ENCODING::TEXT && !IsEnglish(language) ? ENCODING::TWO_BYTE_TEXT : encoding;
}

BYTE TypeLength(ENCODING encoding, std::size_t length) {
    const ENCODING type = encoding == ENCODING::TWO_BYTE_TEXT ? ENCODING::TEXT : encoding;
    return static_cast<BYTE>(static_cast<unsigned>(type) << 6 | (length & MAXIMUM_FIELD));
}

std::string_view EncodingName(ENCODING encoding) {
    const auto index = static_cast<std::size_t>(encoding);
    return index < ENCODING_NAMES.size() ? ENCODING_NAMES[index] : std::string_view();
}

std::optional<ENCODING> EncodingFromName(std::string_view name) {
    for (std::size_t index = 0; index < ENCODING_NAMES.size(); ++index)
        if (name == ENCODING_NAMES[index])
            return static_cast<ENCODING>(index);
    return std::nullopt;
}

std::string DecodeText(ENCODING encoding, BYTE_VIEW bytes) {
    switch (encoding) {
    case ENCODING::BINARY:
        return Hex(bytes);
    case ENCODING::BCD_PLUS:
        return WithoutFill(DecodeBcdPlus(bytes));
    case ENCODING::SIX_BIT:
        return WithoutFill(DecodeSixBit(bytes));
    default:
        return DecodeUnits(bytes, encoding == ENCODING::TWO_BYTE_TEXT ? 2 : 1);
    }
}

} // namespace FruImage
