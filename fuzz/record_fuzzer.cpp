// The data of a multi-record: input is the record type, a byte that chooses a field, the size of a text, the text that
// is set as the field's value, and the data.
#include "fruimage/records/records.h"
#include "fuzz/input.h"

namespace {

using namespace FruRecords;
using Frudata_Fuzz::BYTES;
using Frudata_Fuzz::Require;

/// Fields lie within the data, and every value leads to the bytes from which it was read.
void CheckValues(UINT8 type, const BYTES& data) {
    for (const RECORD_FIELD& field : DecodeRecord(type, data).fields) {
        Require(field.offset + field.size <= data.size());
        const RECORD_RESULT same = EncodeField(type, data, field.key, field.bare);
        Require(same.data ? *same.data == data : data.size() > RECORD_DATA_LIMIT);
    }
}

/// What is taken as a value reads back as one that gives the same bytes.
void SetValue(UINT8 type, const BYTES& data, const std::string& key, const std::string& text) {
    const RECORD_RESULT result = EncodeField(type, data, key, text);
    Require(result.data.has_value() == result.error.empty());
    if (!result.data)
        return;
    Require(result.data->size() <= RECORD_DATA_LIMIT);
    CheckValues(type, *result.data);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* bytes, std::size_t size) {
    Frudata_Fuzz::CInput input(bytes, size);
    const UINT8 type = input.Byte(), choice = input.Byte();
    const std::string text = input.Text(input.Byte());
    const BYTES data = input.Rest();
    CheckValues(type, data);
    const auto fields = DescribeRecord(type, data).fields;
    SetValue(type, data, fields[choice % fields.size()].key, text);
    SetValue(type, data, "other-data", text);
    return 0;
}
