// Values from a command line: what is taken, what is refused and why; typed values; the tables themselves.
#include "tests/fruimage/records/support.h"

#include <set>

namespace {

using namespace FruRecords;

struct ENCODE_ROW {
    std::uint8_t type;
    const char* before;
    const char* key;
    const char* text;
    const char* after; ///< null: refused
    const char* error = "";
};

const ENCODE_ROW ENCODE_ROWS[] = {
    {0x00, "00 F0", "rated-capacity", "4095 W", "FF FF"}, // the reserved bits above the capacity stay
    {0x00, "00 00", "rated-capacity", "4096", nullptr, "rated-capacity: '4096' is none of its values: 0 to 4095 W"},
    {0x00, "00 00", "rated-capacity", "-1", nullptr, "rated-capacity: '-1' is none of its values: 0 to 4095 W"},
    {0x00, "00 00", "rated-capacity", "99999999999999999999", nullptr,
     "rated-capacity: '99999999999999999999' is none of its values: 0 to 4095 W"},
    {0x00, "00 00", "rated-capacity", "", nullptr, "rated-capacity: '' is none of its values: 0 to 4095 W"},
    {0x00, "00 00 00 00", "peak-va", "Not Specified", "00 00 FF FF"},
    {0x00, "00 00 00 00", "peak-va", "many", nullptr,
     "peak-va: 'many' is none of its values: 0 to 65535 VA, or 'not specified'"},
    {0x00, "00 00", "peak-va", "1", nullptr,
     "peak-va: the record ends before this field: it has 2 bytes of data and would need 4"},
    {0x00, "00 00", "color", "red", nullptr, "color: no field of this record (Power supply information)"},
    {0x01, "00 00 00", "nominal-voltage", "-327.68", "00 00 80"},
    {0x01, "00 00 00", "nominal-voltage", "5 V", "00 F4 01"},
    {0x01, "00 00 00", "nominal-voltage", "327.68", nullptr,
     "nominal-voltage: '327.68' is none of its values: -327.68 to 327.67 V"},
    {0x01, "00 00 00", "nominal-voltage", "1.005", nullptr,
     "nominal-voltage: '1.005' is none of its values: -327.68 to 327.67 V"},
    {0x01, "7F", "standby", "true", "FF"},
    {0x01, "7F", "standby", "1", nullptr, "standby: '1' is none of its values: yes or no"},
    // 5 could be the code or 5 V.
    {0x09, "00", "current-unit", "1", nullptr, "current-unit: '1' is none of its values: '10 mA' or '100 mA'"},
    {0x03, "02", "system-name", "\u20AC", nullptr,
     "system-name: '\u20AC' is none of its values: ASCII and Western European letters, other bytes as \\xNN"},
    {0x03, "07 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00", "system-uuid", "1234", nullptr,
     "system-uuid: '1234' is none of its values: a UUID such as 00112233-4455-6677-8899-AABBCCDDEEFF"},
    {0x7F, "", "data", "0aFf 1", nullptr, "data: '0aFf 1' is none of its values: pairs of hexadecimal digits"},
    {0x7F, "01", "data", " 0aFf 10", "0A FF 10"},
    {0x7F, "01", "other-data", "02", nullptr, "other-data: no field of this record (Record of an unknown type)"},
    {0x02, "00 00 00 00 00 00 00 00 00 00 00 00 00", "other-data", "AB", "00 00 00 00 00 00 00 00 00 00 00 00 00 AB"},
    {0xC0, "00 00 00", "manufacturer-id", "PICMG", "5A 31 00 00 00"},
    {0xC0, "5A 31 00 00 00", "picmg-record-id", "16h", "5A 31 00 16 00 00"},
    {0x03, "01", "sub-type", "system uuid", "07 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
};

TEST(EncodeField, TakesValuesAndRefusesOthersWithTheirLimits) {
    for (const ENCODE_ROW& row : ENCODE_ROWS) {
        const auto result = EncodeField(row.type, FromHex(row.before), row.key, row.text);
        EXPECT_EQ(result.error, row.error);
        EXPECT_EQ(result.data, row.after ? std::optional(FromHex(row.after)) : std::nullopt) << row.key << row.text;
    }
}

TEST(EncodeField, KeepsToTheLengthThatAHeaderCanTell) {
    const BYTES data = {2};
    EXPECT_EQ(EncodeField(0x03, data, "system-name", std::string(254, 'n')).data.value_or(BYTES()).size(), 255U);
    EXPECT_EQ(EncodeField(0x03, data, "system-name", std::string(255, 'n')).error,
              "system-name: the record would have 256 bytes of data, the limit is 255");
}

TEST(DecodeRecord, GivesValuesWithTheirTypes) {
    const auto value = [](std::uint8_t type, const char* bytes, const char* key) {
        for (const RECORD_FIELD& field : DecodeRecord(type, FromHex(bytes)).fields)
            if (field.key == key)
                return field.value;
        return FIELD_VALUE("no such field");
    };
    EXPECT_EQ(value(0x00, "EE 02", "rated-capacity"), FIELD_VALUE(std::int64_t{750}));
    EXPECT_EQ(value(0x00, "EE 02 FF FF", "peak-va"), FIELD_VALUE());
    EXPECT_EQ(value(0x01, "80 50 FB", "nominal-voltage"), FIELD_VALUE(DECIMAL{-1200, 2}));
    EXPECT_EQ((DECIMAL{-1201, 2}.Text()), "-12.01");
    EXPECT_EQ((DECIMAL{-1201, 2}.Number()), -12.01);
    EXPECT_EQ(value(0x01, "80", "standby"), FIELD_VALUE(true));
    EXPECT_EQ(value(0x03, "02 61", "sub-type"), FIELD_VALUE(std::string("system name")));
    EXPECT_EQ(value(0x03, "09", "sub-type"), FIELD_VALUE(std::int64_t{9}));
    EXPECT_EQ(value(0x0B, "61 62", "data"), FIELD_VALUE(BYTES{0x61, 0x62}));
}

TEST(DescribeRecord, NamesEachFieldOnceAndEveryFormHasARow) {
    for (const RECORD_DESCRIPTION& form : DescribeAllRecords()) {
        std::set<std::string> keys;
        for (const FIELD_DESCRIPTION& field : form.fields)
            EXPECT_TRUE(keys.insert(field.key).second) << form.title << ": " << field.key;
        EXPECT_FALSE(keys.empty()) << form.title;
    }
    const RECORD_DESCRIPTION supply = DescribeRecord(0x00, {});
    EXPECT_EQ(supply.fields.front().accepts, "0 to 4095 W");
}

TEST(NewRecord, KnowsNothingYet) {
    EXPECT_EQ(NewRecord(0x00), FromHex("00 00 FF FF FF 00 00 00 00 00 00 00 00 00 00 00 00 00 FF 0F 00 00 00 00"));
    EXPECT_EQ(NewRecord(0x03), FromHex("01"));
    for (int type = 0; type <= 0xFF; ++type)
        EXPECT_TRUE(
            DecodeRecord(static_cast<std::uint8_t>(type), NewRecord(static_cast<std::uint8_t>(type))).notes.empty())
            << type;
}

} // namespace
