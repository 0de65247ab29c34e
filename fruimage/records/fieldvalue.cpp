#include "fruimage/records/fieldvalue.h"

#include "fruimage/records/text.h"

#include <charconv>

namespace FruRecords {

namespace {

constexpr NUMBER_NAME FLAG_NAMES[] = {{0, "no"}, {1, "yes"}, {0, "false"}, {1, "true"}};

bool IsBytes(FIELD_KIND kind) {
    return kind == FIELD_KIND::TEXT || kind == FIELD_KIND::BINARY || kind == FIELD_KIND::UUID;
}

NUMBER_NAMES Names(const FIELD_ROW& row) {
    return row.kind == FIELD_KIND::FLAG ? NUMBER_NAMES(FLAG_NAMES) : row.names;
}

const char* FindName(const FIELD_ROW& row, std::uint32_t number) {
    const NUMBER_NAMES names = Names(row);
    const auto found = std::ranges::find(names, number, &NUMBER_NAME::number);
    return found == names.end() ? nullptr : found->name;
}

std::int64_t Greatest(const FIELD_ROW& row) {
    const int bits = row.kind == FIELD_KIND::SIGNED ? row.place.bits - 1 : row.place.bits;
    return (std::int64_t{1} << bits) - 1;
}

std::int64_t Least(const FIELD_ROW& row) {
    return row.kind == FIELD_KIND::SIGNED ? -Greatest(row) - 1 : 0;
}

std::string WithUnit(const FIELD_ROW& row, std::string text) {
    return *row.unit.name ? std::move(text) + " " + row.unit.name : text;
}

void SetNamed(RECORD_FIELD& field, FIELD_VALUE value, const char* name) {
    field.value = std::move(value);
    field.bare = name;
    field.display = name;
}

void SetCode(RECORD_FIELD& field, const FIELD_ROW& row, std::uint32_t number) {
    const auto byteCount = static_cast<std::size_t>(row.place.bits + 7) / 8;
    BYTE_VECTOR bytes;
    for (std::size_t index = byteCount; index > 0; --index)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * (index - 1))));
    field.value = std::int64_t{number};
    field.bare = "0x" + HexText(bytes, "");
    field.display = HexText(bytes, "") + "h";
}

void SetCount(RECORD_FIELD& field, const FIELD_ROW& row, std::uint32_t number) {
    std::int64_t count = number;
    if (count > Greatest(row))
        count -= std::int64_t{1} << row.place.bits;
    if (row.unit.places > 0)
        field.value = DECIMAL{count, row.unit.places};
    else
        field.value = count;
    field.bare = DecimalText(count, row.unit.places);
    field.display = WithUnit(row, field.bare);
}

void SetNumber(RECORD_FIELD& field, const FIELD_ROW& row, std::uint32_t number) {
    const char* const name = FindName(row, number);
    switch (row.kind) {
    case FIELD_KIND::FLAG:
        return SetNamed(field, number != 0, name);
    case FIELD_KIND::ENUMERATION:
        return name ? SetNamed(field, name, name) : SetCode(field, row, number);
    case FIELD_KIND::CODE:
        return SetCode(field, row, number);
    case FIELD_KIND::IDENTIFIER:
        SetCount(field, row, number);
        if (name)
            field.display += std::string(" (") + name + ")";
        return;
    default:
        return name ? SetNamed(field, std::monostate(), name) : SetCount(field, row, number);
    }
}

void SetBytes(RECORD_FIELD& field, FIELD_KIND kind, BYTE_VIEW bytes) {
    if (kind == FIELD_KIND::BINARY) {
        field.value = BYTE_VECTOR(bytes.begin(), bytes.end());
        field.bare = HexText(bytes, " ");
    } else {
        field.bare = kind == FIELD_KIND::UUID ? UuidText(bytes) : Utf8FromLatin1(bytes);
        field.value = field.bare;
    }
    field.display = field.bare;
}

std::optional<BYTE_VECTOR> ParseBytes(FIELD_KIND kind, std::string_view text) {
    switch (kind) {
    case FIELD_KIND::BINARY:
        return ParseHex(text);
    case FIELD_KIND::UUID:
        return ParseUuid(text);
    default:
        return Latin1FromUtf8(text);
    }
}

/// The number, its range unchecked.
std::optional<std::int64_t> ParseCount(const FIELD_ROW& row, std::string_view text) {
    switch (row.kind) {
    case FIELD_KIND::FLAG:
        return {};
    case FIELD_KIND::ENUMERATION:
        // A plain number could mean the value of a name: "5" as 5 V.
        return text.starts_with("0x") ? ParseInteger(text) : std::nullopt;
    case FIELD_KIND::CODE:
        return ParseInteger(text);
    default:
        if (const std::string_view unit = row.unit.name; text.ends_with(unit))
            text = TrimSpaces(text.substr(0, text.size() - unit.size()));
        return ParseDecimal(text, row.unit.places);
    }
}

std::optional<std::uint32_t> ParseNumber(const FIELD_ROW& row, std::string_view text) {
    text = TrimSpaces(text);
    for (const NUMBER_NAME& named : Names(row))
        if (IsSameWord(named.name, text))
            return named.number;
    const auto count = ParseCount(row, text);
    if (!count || *count < Least(row) || *count > Greatest(row))
        return {};
    return static_cast<std::uint32_t>(*count);
}

/// "a, b or c"
std::string Alternatives(NUMBER_NAMES names) {
    std::string text;
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (index > 0)
            text += index + 1 == names.size() ? " or " : ", ";
        text += std::string("'") + names[index].name + "'";
    }
    return text;
}

} // namespace

std::string DECIMAL::Text() const {
    return DecimalText(number, places);
}

double DECIMAL::Number() const {
    // A quotient would have the x87's excess precision where that computes it.
    const std::string text = Text();
    double nearest = 0;
    std::from_chars(text.data(), text.data() + text.size(), nearest);
    return nearest;
}

std::uint32_t ReadNumber(PLACE place, BYTE_VIEW data) {
    std::uint64_t number = 0;
    for (std::size_t index = place.Size(); index > 0; --index)
        number = number << 8 | data[place.offset + index - 1];
    return static_cast<std::uint32_t>((number >> place.firstBit) & ((std::uint64_t{1} << place.bits) - 1));
}

void WriteNumber(PLACE place, std::uint32_t number, BYTE_VECTOR& data) {
    const std::uint64_t mask = ((std::uint64_t{1} << place.bits) - 1) << place.firstBit;
    const std::uint64_t moved = (std::uint64_t{number} << place.firstBit) & mask;
    for (std::size_t index = 0; index < place.Size(); ++index) {
        std::uint8_t& byte = data[place.offset + index];
        byte = static_cast<std::uint8_t>((byte & ~(mask >> (8 * index))) | (moved >> (8 * index)));
    }
}

RECORD_FIELD ReadField(const FIELD_ROW& row, BYTE_VIEW data) {
    RECORD_FIELD field;
    field.key = row.key;
    field.title = row.title;
    field.unit = row.unit.name;
    field.offset = row.place.offset;
    field.size = row.place.IsRest() ? data.size() - row.place.offset : row.place.Size();
    field.isContent = IsBytes(row.kind);
    if (IsBytes(row.kind))
        SetBytes(field, row.kind, data.subspan(field.offset, field.size));
    else
        SetNumber(field, row, ReadNumber(row.place, data));
    return field;
}

bool WriteField(const FIELD_ROW& row, std::string_view text, BYTE_VECTOR& data) {
    if (!IsBytes(row.kind)) {
        const auto number = ParseNumber(row, text);
        if (number)
            WriteNumber(row.place, *number, data);
        return number.has_value();
    }
    const auto bytes = ParseBytes(row.kind, text);
    if (!bytes)
        return false;
    if (row.place.IsRest())
        data.resize(row.place.offset + bytes->size());
    std::ranges::copy(*bytes, data.begin() + row.place.offset);
    return true;
}

std::string AcceptedValues(const FIELD_ROW& row) {
    switch (row.kind) {
    case FIELD_KIND::TEXT:
        return "ASCII and Western European letters, other bytes as \\xNN";
    case FIELD_KIND::BINARY:
        return "pairs of hexadecimal digits";
    case FIELD_KIND::UUID:
        return "a UUID such as 00112233-4455-6677-8899-AABBCCDDEEFF";
    case FIELD_KIND::FLAG:
        return "yes or no";
    case FIELD_KIND::ENUMERATION:
        return Alternatives(row.names);
    default: {
        std::string range = WithUnit(row, DecimalText(Least(row), row.unit.places) + " to " +
                                              DecimalText(Greatest(row), row.unit.places));
        return row.names.empty() ? range : range + ", or " + Alternatives(row.names);
    }
    }
}

} // namespace FruRecords
