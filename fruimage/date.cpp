#include "fruimage/text.h"
#include "fruimage/value.h"

#include <charconv>
#include <chrono>
#include <map>

namespace FruImage {

namespace {

using namespace std::chrono;

/// Date 0 (FRU Information Storage Definition, section 11).
constexpr sys_days ORIGIN = year{1996} / January / 1;
constexpr unsigned UNSPECIFIED = 0;
constexpr unsigned ERASED_DATE = 0xFFFFFF;

BYTES DateBytes(unsigned minutes) {
    return {static_cast<BYTE>(minutes), static_cast<BYTE>(minutes >> 8), static_cast<BYTE>(minutes >> 16)};
}

std::string Digits(unsigned number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

/// Reads `text` by a pattern: each lower-case letter stands for one digit of the number of that letter, every other
/// character for itself.
std::optional<std::map<char, int>> ReadPattern(std::string_view text, std::string_view pattern) {
    if (text.size() != pattern.size())
        return std::nullopt;
    std::map<char, int> numbers;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const char wanted = pattern[position];
        const char given = text[position];
        const bool isNumber = wanted >= 'a' && wanted <= 'z';
        if (isNumber ? given < '0' || given > '9' : given != wanted)
            return std::nullopt;
        if (isNumber)
            numbers[wanted] = numbers[wanted] * 10 + (given - '0');
    }
    return numbers;
}

/// Minutes since the origin; nothing for a text that is no date of the calendar or has seconds.
std::optional<long> ReadDate(std::string_view text) {
    if (text.ends_with('Z') && text.find('T') != std::string_view::npos)
        text.remove_suffix(1);
    for (const char* pattern : {"yyyy-mm-dd", "yyyy-mm-ddThh:ii", "yyyy-mm-ddThh:ii:00"}) {
        auto numbers = ReadPattern(text, pattern);
        if (!numbers)
            continue;
        auto& read = *numbers;
        const year_month_day date{year{read['y']}, month{static_cast<unsigned>(read['m'])},
                                  day{static_cast<unsigned>(read['d'])}};
        if (!date.ok() || read['h'] > 23 || read['i'] > 59)
            return std::nullopt;
        return (sys_days(date) - ORIGIN + hours(read['h']) + minutes(read['i'])) / minutes(1);
    }
    return std::nullopt;
}

} // namespace

std::string DateText(BYTE_VIEW bytes) {
    const unsigned count = bytes.size() < 3 ? UNSPECIFIED : bytes[0] + bytes[1] * 0x100U + bytes[2] * 0x10000U;
    if (count == UNSPECIFIED || count == ERASED_DATE)
        return "unspecified";
    const year_month_day date(floor<days>(ORIGIN + minutes(count)));
    const unsigned inDay = count % (24U * 60U);
    return Text(Digits(static_cast<unsigned>(static_cast<int>(date.year())), 4), "-",
                Digits(static_cast<unsigned>(date.month()), 2), "-", Digits(static_cast<unsigned>(date.day()), 2), "T",
                Digits(inDay / 60, 2), ":", Digits(inDay % 60, 2), "Z");
}

Result<BYTES> ParseDate(std::string_view text) {
    if (text == "unspecified")
        return DateBytes(UNSPECIFIED);
    const auto count = ReadDate(text);
    if (!count)
        return BadValue(Text("'", text, "' is no date"),
                        "write it as 2026-05-31, 2026-05-31T14:30Z (UTC, whole minutes) or unspecified");
    if (*count <= static_cast<long>(UNSPECIFIED) || *count >= static_cast<long>(ERASED_DATE))
        return BadValue(Text("'", text, "' is outside what the field holds"),
                        "after 1996-01-01T00:00Z, up to " + DateText(DateBytes(ERASED_DATE - 1)));
    return DateBytes(static_cast<unsigned>(*count));
}

Result<BYTES> ParseChassisType(std::string_view text) {
    if (const auto type = ChassisTypeFromName(text))
        return BYTES{*type};
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const bool hexadecimal = text.starts_with("0x");
    const auto read = std::from_chars(text.data() + (hexadecimal ? 2 : 0), end, number, hexadecimal ? 16 : 10);
    if (read.ec != std::errc() || read.ptr != end || number > 0xFF ||
        ChassisTypeName(static_cast<BYTE>(number)).empty())
        return BadValue(Text("'", text, "' is no chassis type"), "give a number such as 23, or a name of the standard");
    return BYTES{static_cast<BYTE>(number)};
}

} // namespace FruImage
