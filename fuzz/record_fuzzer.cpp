// The data of a multi-record: input is the record type, a byte that chooses a field, the size of a text, the text that
// is set as the field's value, and the data.
#include "fruimage/records/records.h"

#include <cstdlib>
#include <iostream>

namespace {

using namespace FruRecords;
using BYTES = std::vector<std::uint8_t>;

void Require(bool holds, const char* promise, const std::string& key) {
    if (holds)
        return;
    std::cerr << "not true of " << key << ": " << promise << '\n';
    std::abort();
}

/// Every value leads to the bytes from which it was read, and fields lie within the data.
void CheckValues(std::uint8_t type, const BYTES& data) {
    for (const RECORD_FIELD& field : DecodeRecord(type, data).fields) {
        Require(field.offset + field.size <= data.size(), "the field lies within the data", field.key);
        const RECORD_RESULT same = EncodeField(type, data, field.key, field.bare);
        Require(same.data ? *same.data == data : data.size() > RECORD_DATA_LIMIT, "its value gives the same bytes",
                field.key);
    }
}

/// What is taken as a value reads back as one that gives the same bytes.
void SetValue(std::uint8_t type, const BYTES& data, const std::string& key, const std::string& text) {
    const RECORD_RESULT result = EncodeField(type, data, key, text);
    Require(result.data.has_value() == result.error.empty(), "there is data or an error", key);
    if (!result.data)
        return;
    Require(result.data->size() <= RECORD_DATA_LIMIT, "the data fits a record", key);
    CheckValues(type, *result.data);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::size_t head = 3;
    if (size < head)
        return 0;
    const std::span<const std::uint8_t> rest(bytes + head, size - head);
    const std::size_t textSize = std::min<std::size_t>(bytes[2], rest.size());
    const std::string text(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(textSize));
    // In a buffer of its own: what is read behind the data is found out.
    const BYTES data(rest.begin() + static_cast<std::ptrdiff_t>(textSize), rest.end());
    const std::uint8_t type = bytes[0];
    CheckValues(type, data);
    const auto fields = DescribeRecord(type, data).fields;
    SetValue(type, data, fields[bytes[1] % fields.size()].key, text);
    SetValue(type, data, "other-data", text);
    return 0;
}
