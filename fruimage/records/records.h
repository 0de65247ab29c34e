// Multi-records in words (IPMI FRU Information Storage Definition v1.0 rev 1.3, section 18). Everything here takes
// any bytes. A record's data begins behind its five-byte header, which does not count here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace FruRecords {

/// The length of a record's data is one byte of its header.
inline constexpr std::size_t RECORD_DATA_LIMIT = 255;

/// A number with a fixed number of decimal places: 10000 with 2 places is 100.00.
struct DECIMAL {
    std::int64_t number = 0;
    unsigned int places = 0;

    /// With all its places: "100.00".
    std::string Text() const;
    /// The nearest double, which prints as the same number.
    double Number() const;
    bool operator==(const DECIMAL&) const = default;
};

/// A value for programs. Nothing (std::monostate) where the field says that it has no value.
using FIELD_VALUE = std::variant<std::monostate, std::int64_t, DECIMAL, bool, std::string, std::vector<std::uint8_t>>;

/// One complete field. All texts are UTF-8.
struct RECORD_FIELD {
    std::string key;     ///< as in a field's path: "rated-capacity"
    std::string title;   ///< for people: "Rated capacity"
    std::string unit;    ///< of a number: "W"; else empty
    FIELD_VALUE value;   ///< in `unit`
    std::string bare;    ///< "750", of which EncodeField makes the same bytes
    std::string display; ///< "750 W"
    std::size_t offset = 0;
    std::size_t size = 0;   ///< bytes that hold it; neighbours may share them
    bool isContent = false; ///< `bare` and `display` are what somebody wrote there, not words of this program

    bool HasValue() const { return !std::holds_alternative<std::monostate>(value); }
};

/// One line for people: "Voltage 1 range", "100.00 V to 127.00 V".
struct RECORD_LINE {
    std::string title;
    std::string text;
    bool isContent = false; ///< as of the field
};

struct DECODED_RECORD {
    std::string title; ///< "Power supply information"
    std::vector<RECORD_FIELD> fields;
    std::vector<RECORD_LINE> lines; ///< the same fields; some share a line
    /// Oddities of the record, a sentence each: shorter or longer than its type says.
    std::vector<std::string> notes;
};

/// `type` is the record type ID of the header. Bytes that no field covers are the field `other-data`.
DECODED_RECORD DecodeRecord(std::uint8_t type, std::span<const std::uint8_t> data);

/// Data, or the reason why there is none, which names the field and its limits.
struct RECORD_RESULT {
    std::optional<std::vector<std::uint8_t>> data;
    std::string error;
};

/// The data with the field `key` set. `text` is a field's bare value, with or without the unit. Bits of no
/// field stay. If the value makes another kind of record (a sub-type), missing fields are appended.
RECORD_RESULT EncodeField(std::uint8_t type, std::span<const std::uint8_t> data, std::string_view key,
                          std::string_view text);

/// The data of a new record: every value is "not specified" or zero.
std::vector<std::uint8_t> NewRecord(std::uint8_t type);

/// The names of a field and the values that it takes.
struct FIELD_DESCRIPTION {
    std::string key;
    std::string title;
    std::string unit;
    std::string accepts; ///< "0 to 4095 W", "yes or no"
};

/// One form of a record type. Forms of one type differ in a field such as a sub-type.
struct RECORD_DESCRIPTION {
    std::string title;
    std::uint8_t firstType = 0;
    std::uint8_t lastType = 0;
    std::vector<FIELD_DESCRIPTION> fields;
};

/// The form of this record.
RECORD_DESCRIPTION DescribeRecord(std::uint8_t type, std::span<const std::uint8_t> data);
/// All forms, by type; within a type the general one is last.
std::vector<RECORD_DESCRIPTION> DescribeAllRecords();

} // namespace FruRecords
