#include "tools/fructl/value.h"

#include "tools/fructl/standardnames.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>

namespace Fructl {

namespace {

using namespace std::chrono;

/// Date/time 0 (FRU Information Storage Definition, section 11). The library's own text counts from one
/// day earlier; every other tool and the BMC's own pages count from here.
constexpr sys_days ORIGIN = year{1996} / January / 1;
constexpr unsigned MAXIMUM_MINUTES = 0xFFFFFF;

constexpr UINT8 FIRST_CHASSIS_TYPE = 1;
/// Types above this one are in the standard, but cannot be set.
constexpr UINT8 LAST_CHASSIS_TYPE = 23;

[[noreturn]] void Refuse(const std::string& name, std::string why, std::string hint = {}) {
    throw CToolError(EXIT_REFUSED, name, std::move(why), std::move(hint));
}

std::string DecodeBcdPlus(BYTE_VIEW bytes) {
    constexpr std::string_view CHARACTERS = "0123456789 -.???";
    std::string text;
    for (const UINT8 byte : bytes) {
        text += CHARACTERS[byte >> 4];
        text += CHARACTERS[byte & 0x0F];
    }
    return text;
}

/// Six bits a character, the first in the lowest bits; 0 is the blank.
std::string Decode6Bit(BYTE_VIEW bytes) {
    std::string text;
    unsigned bits = 0;
    unsigned count = 0;
    for (const UINT8 byte : bytes) {
        bits |= static_cast<unsigned>(byte) << count;
        for (count += 8; count >= 6; count -= 6) {
            text += static_cast<char>(' ' + (bits & 0x3F));
            bits >>= 6;
        }
    }
    return text;
}

BYTES EncodeChassisType(std::string_view text, const std::string& name) {
    const auto number = ParseNumber(text, 255);
    const auto type = number ? static_cast<UINT8>(*number) : ChassisTypeFromName(text);
    if (!type)
        Refuse(name, fmt::format("'{}' is no chassis type", text),
               "give a number such as 23, or a name: 'fructl fields'");
    if (*type < FIRST_CHASSIS_TYPE || *type > LAST_CHASSIS_TYPE)
        Refuse(name, fmt::format("{} cannot be set: types {} to {} can", ChassisTypeText(*type), FIRST_CHASSIS_TYPE,
                                 LAST_CHASSIS_TYPE));
    return {*type};
}

BYTES DateBytes(unsigned minutes) {
    return {static_cast<UINT8>(minutes), static_cast<UINT8>(minutes >> 8), static_cast<UINT8>(minutes >> 16)};
}

/// Reads `text` by a pattern in which each lower-case letter stands for one digit of the number of that
/// letter, and every other character for itself.
std::optional<std::map<char, int>> ReadPattern(std::string_view text, std::string_view pattern) {
    if (text.size() != pattern.size())
        return {};
    std::map<char, int> numbers;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char wanted = pattern[position];
        const char given = text[position];
        const bool isNumber = wanted >= 'a' && wanted <= 'z';
        if (isNumber ? given < '0' || given > '9' : given != wanted)
            return {};
        if (isNumber)
            numbers[wanted] = numbers[wanted] * 10 + (given - '0');
    }
    return numbers;
}

/// Minutes since the origin; nothing where the text is no date of the calendar.
std::optional<long> ParseDate(std::string_view text, const std::string& name) {
    if (text.ends_with('Z') && text.find('T') != std::string_view::npos)
        text.remove_suffix(1);
    for (const char* pattern : {"yyyy-mm-dd", "yyyy-mm-ddThh:ii", "yyyy-mm-ddThh:ii:ss"}) {
        auto numbers = ReadPattern(text, pattern);
        if (!numbers)
            continue;
        auto& read = *numbers;
        const year_month_day date{year{read['y']}, month{static_cast<unsigned>(read['m'])},
                                  day{static_cast<unsigned>(read['d'])}};
        if (!date.ok() || read['h'] > 23 || read['i'] > 59 || read['s'] > 59)
            return {};
        if (read['s'] != 0)
            Refuse(name, "the date holds whole minutes, no seconds");
        return (sys_days(date) - ORIGIN + hours(read['h']) + minutes(read['i'])) / minutes(1);
    }
    return {};
}

BYTES EncodeDate(const std::string& text, const std::string& name) {
    if (text == "unspecified")
        return DateBytes(0);
    const auto minutes = ParseDate(text, name);
    if (!minutes)
        Refuse(name, fmt::format("'{}' is no date", text),
               "write it as 2026-05-31, 2026-05-31T14:30Z (UTC) or unspecified");
    if (*minutes <= 0 || *minutes > static_cast<long>(MAXIMUM_MINUTES))
        Refuse(name, fmt::format("'{}' is outside what the field holds: after 1996-01-01T00:00Z, up to {}", text,
                                 DecodeDate(DateBytes(MAXIMUM_MINUTES))));
    return DateBytes(static_cast<unsigned>(*minutes));
}

/// Latin-1 bytes of UTF-8 text.
BYTES Latin1FromUtf8(std::string_view text, const std::string& name) {
    BYTES bytes;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const auto first = static_cast<UINT8>(text[position]);
        if (first < 0x80) {
            bytes.push_back(first);
            continue;
        }
        // Latin-1 beyond ASCII is U+0080 to U+00FF: two bytes, C2 or C3 first.
        const UINT8 second = position + 1 < text.size() ? static_cast<UINT8>(text[position + 1]) : 0;
        if ((first != 0xC2 && first != 0xC3) || (second & 0xC0) != 0x80)
            Refuse(name, "the value has a character outside Latin-1",
                   "a FRU field holds one byte a character: ASCII and Western European letters");
        bytes.push_back(static_cast<UINT8>((first << 6) | (second & 0x3F)));
        ++position;
    }
    return bytes;
}

} // namespace

std::string Utf8FromLatin1(BYTE_VIEW bytes) {
    std::string text;
    for (const UINT8 byte : bytes) {
        if (byte < 0x20 || (byte >= 0x7F && byte < 0xA0))
            text += fmt::format("\\x{:02X}", byte);
        else if (byte < 0x80)
            text += static_cast<char>(byte);
        else
            text += {static_cast<char>(0xC0 | (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
    }
    return text;
}

std::string DecodeDate(BYTE_VIEW bytes) {
    const unsigned count = bytes.size() < 3 ? 0U : bytes[0] + bytes[1] * 0x100U + bytes[2] * 0x10000U;
    if (count == 0)
        return "unspecified";
    const sys_days day = floor<days>(ORIGIN + minutes(count));
    const year_month_day date(day);
    const unsigned inDay = count % (24U * 60U);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), inDay / 60, inDay % 60);
}

std::string DecodeValue(const FIELD& field) {
    if (field.kind == FIELD_KIND::DATE)
        return DecodeDate(field.data);
    if (field.kind == FIELD_KIND::CHASSIS_TYPE)
        return field.data.empty() ? std::string() : ChassisTypeText(field.data[0]);
    switch (field.Type()) {
    case FIELD_BINARY:
        return Hex(field.data, " ");
    case FIELD_BCD_PLUS:
        return DecodeBcdPlus(field.data);
    case FIELD_6_BIT:
        return Decode6Bit(field.data);
    default:
        return Utf8FromLatin1(field.data);
    }
}

std::string_view TypeName(const FIELD& field) {
    if (field.kind != FIELD_KIND::TEXT)
        return field.kind == FIELD_KIND::DATE ? "date" : "chassis-type";
    switch (field.Type()) {
    case FIELD_BINARY:
        return "binary";
    case FIELD_BCD_PLUS:
        return "bcd+";
    case FIELD_6_BIT:
        return "6-bit";
    default:
        return "text";
    }
}

void CheckText(BYTE_VIEW bytes, const std::string& name, bool force) {
    if (std::any_of(bytes.begin(), bytes.end(),
                    [](UINT8 byte) { return byte < 0x20 || (byte >= 0x7F && byte < 0xA0); }))
        Refuse(name, "the value has a control character");
    if (bytes.size() > MAXIMUM_FIELD)
        Refuse(name, fmt::format("the value has {} bytes, a field holds {}", bytes.size(), MAXIMUM_FIELD));
    if (bytes.size() == 1 && !force)
        Refuse(name, "a value of one character is written as C1h, which other tools take for the end of the area",
               "make it longer, for example with a blank, or insist with --force");
}

BYTES EncodeValue(FIELD_KIND kind, std::string_view text, const std::string& name, bool force) {
    if (kind == FIELD_KIND::CHASSIS_TYPE)
        return EncodeChassisType(text, name);
    if (kind == FIELD_KIND::DATE)
        return EncodeDate(std::string(text), name);
    BYTES bytes = Latin1FromUtf8(text, name);
    CheckText(bytes, name, force);
    return bytes;
}

} // namespace Fructl
