#include "fruimage/text.h"
#include "fruimage/value.h"

#include <algorithm>

namespace FruImage {

namespace {

using CHARACTERS = std::vector<std::uint32_t>;

/// Reads one character of several bytes at `position` and moves behind it; nothing if it is no UTF-8.
std::optional<std::uint32_t> ReadLongCharacter(std::string_view text, std::size_t& position) {
    const auto first = static_cast<BYTE>(text[position++]);
    const std::size_t more = first >= 0xF0 && first < 0xF8 ? 3 : first >= 0xE0 ? 2 : 1;
    constexpr std::uint32_t LEAST[] = {0, 0x80, 0x800, 0x10000};
    if (first < 0xC0 || first >= 0xF8 || text.size() - position < more)
        return std::nullopt;
    std::uint32_t character = first & (0x3FU >> more);
    for (const std::size_t end = position + more; position < end; ++position) {
        const auto byte = static_cast<BYTE>(text[position]);
        if ((byte & 0xC0) != 0x80)
            return std::nullopt;
        character = character << 6 | (byte & 0x3FU);
    }
    const bool known = character >= LEAST[more] && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    return known ? std::optional(character) : std::nullopt;
}

Result<CHARACTERS> Characters(std::string_view text) {
    CHARACTERS characters;
    for (std::size_t position = 0; position < text.size();) {
        std::optional<std::uint32_t> character = static_cast<BYTE>(text[position]);
        if (*character < 0x80)
            ++position;
        else
            character = ReadLongCharacter(text, position);
        if (!character)
            return BadValue("the value is not UTF-8");
        if (*character < 0x20 || (*character >= 0x7F && *character < 0xA0))
            return BadValue("the value has a control character");
        characters.push_back(*character);
    }
    return characters;
}

ERROR Lacking(ENCODING encoding, const char* has) {
    return BadValue(Text("the value has a character that ", EncodingName(encoding), " lacks: it has ", has));
}

Result<BYTES> EncodeUnits(const CHARACTERS& characters, ENCODING encoding) {
    const bool two = encoding == ENCODING::TWO_BYTE_TEXT;
    BYTES bytes;
    for (const std::uint32_t character : characters) {
        if (character > (two ? 0xFFFDU : 0xFFU))
            return two ? Lacking(encoding, "the first 65533 of Unicode")
                       : BadValue("the value has a character outside Latin-1",
                                  "an English area holds one byte a character: ASCII and Western European letters");
        bytes.push_back(static_cast<BYTE>(character));
        if (two)
            bytes.push_back(static_cast<BYTE>(character >> 8));
    }
    return bytes;
}

Result<BYTES> EncodeBcdPlus(const CHARACTERS& characters) {
    constexpr std::string_view DIGITS = "0123456789 -.";
    BYTES bytes;
    bool half = false;
    for (const std::uint32_t character : characters) {
        const std::size_t digit = character < 0x80 ? DIGITS.find(static_cast<char>(character)) : std::string::npos;
        if (digit == std::string_view::npos)
            return Lacking(ENCODING::BCD_PLUS, "digits, blank, dash and period");
        if (half)
            bytes.back() = static_cast<BYTE>((bytes.back() & 0xF0) | digit);
        else
            bytes.push_back(static_cast<BYTE>(digit << 4 | DIGITS.find(' ')));
        half = !half;
    }
    return bytes;
}

Result<BYTES> EncodeSixBit(const CHARACTERS& characters) {
    BYTES bytes;
    unsigned bits = 0;
    unsigned count = 0;
    for (const std::uint32_t character : characters) {
        if (character < 0x20 || character > 0x5F)
            return Lacking(ENCODING::SIX_BIT, "blank to underscore, no lower case");
        bits |= (character - 0x20U) << count;
        for (count += 6; count >= 8; count -= 8) {
            bytes.push_back(static_cast<BYTE>(bits));
            bits >>= 8;
        }
    }
    if (count > 0)
        bytes.push_back(static_cast<BYTE>(bits));
    return bytes;
}

Result<BYTES> EncodeBinary(std::string_view text) {
    constexpr std::string_view DIGITS = "0123456789ABCDEFabcdef";
    BYTES bytes;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == ' ') {
            ++at;
            continue;
        }
        unsigned byte = 0;
        for (const std::size_t end = at + 2; at < end; ++at) {
            const std::size_t digit = at < text.size() ? DIGITS.find(text[at]) : std::string_view::npos;
            if (digit == std::string_view::npos)
                return BadValue("a binary value is written as pairs of hexadecimal digits", "for example: 01 AB");
            byte = byte << 4 | static_cast<unsigned>(digit < 16 ? digit : digit - 6);
        }
        bytes.push_back(static_cast<BYTE>(byte));
    }
    return bytes;
}

Result<BYTES> EncodeBytes(std::string_view text, ENCODING encoding) {
    if (encoding == ENCODING::BINARY)
        return EncodeBinary(text);
    const Result<CHARACTERS> characters = Characters(text);
    if (!characters)
        return characters.Error();
    switch (encoding) {
    case ENCODING::BCD_PLUS:
        return EncodeBcdPlus(*characters);
    case ENCODING::SIX_BIT:
        return EncodeSixBit(*characters);
    default:
        return EncodeUnits(*characters, encoding);
    }
}

} // namespace

Result<FIELD_VALUE> EncodeText(std::string_view text, ENCODING encoding) {
    Result<BYTES> bytes = EncodeBytes(text, encoding);
    if (!bytes)
        return bytes.Error();
    if (bytes->size() > MAXIMUM_FIELD)
        return BadValue(Text("the value has ", bytes->size(), " bytes, a field holds ", MAXIMUM_FIELD));
    if (TypeLength(encoding, bytes->size()) == END_OF_FIELDS)
        return BadValue("a text of one byte would read as the end of the fields",
                        "make it longer, or choose another encoding");
    return FIELD_VALUE{encoding, bytes.Take()};
}

Result<FIELD_VALUE> EncodeKeeping(std::string_view text, ENCODING before, BYTE language) {
    const ENCODING ofArea = EncodingOf(EMPTY_FIELD, language);
    const bool wasText = before == ENCODING::TEXT || before == ENCODING::TWO_BYTE_TEXT;
    for (const ENCODING encoding : {wasText ? ofArea : before, ofArea, ENCODING::SIX_BIT, ENCODING::BCD_PLUS}) {
        Result<FIELD_VALUE> value = EncodeText(text, encoding);
        // Fill at the end does not count: refuse to pack a value that ends with it.
        const bool packed = encoding == ENCODING::SIX_BIT || encoding == ENCODING::BCD_PLUS;
        if (value && (!packed || DecodeText(encoding, value->bytes) == text))
            return value;
    }
    return EncodeText(text, ofArea);
}

} // namespace FruImage
