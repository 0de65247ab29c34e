#include "fruimage/records/text.h"

#include <charconv>

namespace FruRecords {

namespace {

// For each pair of digits of the text, the place of its byte.
constexpr std::size_t UUID_ORDER[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};

/// The byte of two hexadecimal digits at the front of `text`.
std::optional<std::uint8_t> HexByte(std::string_view text) {
    std::uint8_t byte = 0;
    const auto* const end = text.data() + 2;
    if (text.size() < 2 || std::from_chars(text.data(), end, byte, 16).ptr != end)
        return {};
    return byte;
}

std::optional<std::uint8_t> EscapedByte(std::string_view text) {
    return text.starts_with("\\x") ? HexByte(text.substr(2)) : std::nullopt;
}

std::optional<std::int64_t> ParseDigits(std::string_view digits, int base) {
    std::uint32_t number = 0;
    const auto* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number, base);
    if (digits.empty() || result.ec != std::errc() || result.ptr != end)
        return {};
    return number;
}

bool BeginsEscape(BYTE_VIEW bytes) {
    const auto front = bytes.first(std::min<std::size_t>(bytes.size(), 4));
    return EscapedByte(std::string(front.begin(), front.end())).has_value();
}

} // namespace

std::string HexText(BYTE_VIEW bytes, std::string_view separator) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty())
            text += separator;
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

std::optional<BYTE_VECTOR> ParseHex(std::string_view text) {
    BYTE_VECTOR bytes;
    for (text = TrimSpaces(text); !text.empty(); text = TrimSpaces(text.substr(2))) {
        const auto byte = HexByte(text);
        if (!byte)
            return {};
        bytes.push_back(*byte);
    }
    return bytes;
}

std::string Utf8FromLatin1(BYTE_VIEW bytes) {
    std::string text;
    for (std::size_t position = 0; position < bytes.size(); ++position) {
        const std::uint8_t byte = bytes[position];
        if (byte < 0x20 || (byte >= 0x7F && byte < 0xA0) || BeginsEscape(bytes.subspan(position)))
            text += "\\x" + HexText(bytes.subspan(position, 1), "");
        else if (byte < 0x80)
            text += static_cast<char>(byte);
        else
            text += {static_cast<char>(0xC0 | (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
    }
    return text;
}

std::optional<BYTE_VECTOR> Latin1FromUtf8(std::string_view text) {
    BYTE_VECTOR bytes;
    while (!text.empty()) {
        const auto first = static_cast<std::uint8_t>(text[0]);
        const auto second = text.size() > 1 ? static_cast<std::uint8_t>(text[1]) : std::uint8_t{0};
        std::size_t length = 1;
        if (const auto escaped = EscapedByte(text)) {
            bytes.push_back(*escaped);
            length = 4;
        } else if (first < 0x80) {
            bytes.push_back(first);
        } else {
            // Latin-1 beyond ASCII is U+0080 to U+00FF: two bytes, C2 or C3 first.
            if ((first != 0xC2 && first != 0xC3) || (second & 0xC0) != 0x80)
                return {};
            bytes.push_back(static_cast<std::uint8_t>((first << 6) | (second & 0x3F)));
            length = 2;
        }
        text.remove_prefix(length);
    }
    return bytes;
}

std::string UuidText(BYTE_VIEW bytes) {
    std::string text;
    for (std::size_t pair = 0; pair < std::size(UUID_ORDER); ++pair) {
        if (pair >= 4 && pair <= 10 && pair % 2 == 0)
            text += '-';
        text += HexText(bytes.subspan(UUID_ORDER[pair], 1), "");
    }
    return text;
}

std::optional<BYTE_VECTOR> ParseUuid(std::string_view text) {
    constexpr std::size_t dashes[] = {8, 13, 18, 23};
    std::string digits(TrimSpaces(text));
    if (digits.size() != 36 || !std::ranges::all_of(dashes, [&](std::size_t dash) { return digits[dash] == '-'; }))
        return {};
    std::erase(digits, '-');
    const auto pairs = ParseHex(digits);
    if (!pairs || pairs->size() != std::size(UUID_ORDER))
        return {};
    BYTE_VECTOR bytes(pairs->size());
    for (std::size_t pair = 0; pair < pairs->size(); ++pair)
        bytes[UUID_ORDER[pair]] = (*pairs)[pair];
    return bytes;
}

std::string DecimalText(std::int64_t number, unsigned int places) {
    const bool isNegative = number < 0;
    std::string text = std::to_string(isNegative ? -number : number);
    if (text.size() <= places)
        text.insert(0, places + 1 - text.size(), '0');
    if (places > 0)
        text.insert(text.size() - places, 1, '.');
    return isNegative ? "-" + text : text;
}

std::optional<std::int64_t> ParseDecimal(std::string_view text, unsigned int places) {
    const bool isNegative = text.starts_with('-');
    text.remove_prefix(isNegative ? 1 : 0);
    const std::size_t point = text.find('.');
    std::string digits(text.substr(0, point));
    std::size_t given = 0;
    if (point != std::string_view::npos) {
        const std::string_view fraction = text.substr(point + 1);
        given = fraction.size();
        if (digits.empty() || given == 0 || given > places)
            return {};
        digits += fraction;
    }
    if (digits.empty())
        return {};
    digits.append(places - given, '0');
    const auto number = ParseDigits(digits, 10);
    return number && isNegative ? -*number : number;
}

std::optional<std::int64_t> ParseInteger(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X"))
        return ParseDigits(text.substr(2), 16);
    if (text.ends_with('h'))
        return ParseDigits(text.substr(0, text.size() - 1), 16);
    return ParseDigits(text, 10);
}

std::string_view TrimSpaces(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

bool IsSameWord(std::string_view left, std::string_view right) {
    constexpr auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::ranges::equal(left, right, {}, lower, lower);
}

} // namespace FruRecords
