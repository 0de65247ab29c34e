// The rows that describe records. Everything else in this folder is a walk over them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace FruRecords {

using BYTE_VIEW = std::span<const std::uint8_t>;
using BYTE_VECTOR = std::vector<std::uint8_t>;

/// Bits inside a record's data. Numbers are stored with the least significant byte first: `firstBit` counts from
/// the least significant bit of the byte at `offset`.
struct PLACE {
    std::uint16_t offset;
    std::uint8_t firstBit;
    std::uint8_t bits; ///< 0: whole bytes up to the end of the record

    constexpr bool IsRest() const { return bits == 0; }
    /// Bytes touched; 0 for a rest.
    constexpr std::size_t Size() const { return (static_cast<std::size_t>(firstBit) + bits + 7) / 8; }
    constexpr std::size_t End() const { return offset + Size(); }
};

constexpr PLACE Byte(std::uint16_t offset) {
    return {offset, 0, 8};
}
constexpr PLACE Word(std::uint16_t offset) {
    return {offset, 0, 16};
}
constexpr PLACE Bits(std::uint16_t offset, std::uint8_t firstBit, std::uint8_t bits = 1) {
    return {offset, firstBit, bits};
}
constexpr PLACE Rest(std::uint16_t offset) {
    return {offset, 0, 0};
}

enum class FIELD_KIND : std::uint8_t {
    UNSIGNED,    ///< `names` are the numbers that mean "no value"
    SIGNED,      ///< two's complement; `names` as above
    IDENTIFIER,  ///< a decimal number; `names` explain some
    CODE,        ///< a hexadecimal number
    ENUMERATION, ///< one of `names`
    FLAG,
    TEXT,   ///< ASCII and Latin-1
    BINARY, ///< bytes
    UUID,   ///< 16 bytes, in the order of SMBIOS: the first three groups with the least significant byte first
};

/// The meaning of a number in a field.
struct NUMBER_NAME {
    std::uint32_t number;
    const char* name;
};
using NUMBER_NAMES = std::span<const NUMBER_NAME>;

/// The unit of a number: it counts steps of 10^-places of `name`. {"V", 2} is 10 mV.
struct UNIT {
    const char* name = "";
    std::uint8_t places = 0;
};
inline constexpr UNIT NO_UNIT = {};

struct FIELD_ROW {
    const char* key;
    const char* title;
    PLACE place;
    FIELD_KIND kind = FIELD_KIND::UNSIGNED;
    UNIT unit = {};
    NUMBER_NAMES names = {};
    std::uint32_t initial = 0; ///< the number in a new record
};
using FIELD_ROWS = std::span<const FIELD_ROW>;

/// Several fields in one line for people: `pattern` has their keys in braces, the last at its end.
struct LINE_ROW {
    const char* title = "";
    const char* pattern = "";
    bool restNeedsFirst = false; ///< where the first field has no value, the others mean nothing
};

/// A field's number that tells the forms of one record type apart.
struct FORM_MATCH {
    PLACE place;
    std::uint32_t number;
};

/// The data of some record types: a row for each field, in the order of their places.
struct RECORD_FORM {
    std::uint8_t firstType;
    std::uint8_t lastType;
    const char* title;
    std::array<FIELD_ROWS, 3> parts = {}; ///< forms share parts; read one after the other
    std::span<const LINE_ROW> lines = {};
    std::span<const FORM_MATCH> matches = {}; ///< all must hold
};

/// In the order in which they are tried: the last form of a type takes the records that fit no other.
std::span<const RECORD_FORM> StandardForms();
std::span<const RECORD_FORM> ManufacturerForms();
/// For types without a form of their own.
const RECORD_FORM& UnknownForm();

} // namespace FruRecords
