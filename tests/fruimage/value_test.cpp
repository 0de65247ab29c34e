// Values against the standard's own tables.
#include "fruimage/value.h"

#include <gtest/gtest.h>

namespace FruImage {

namespace {

using enum ENCODING;

struct ROW {
    const char* text;
    ENCODING encoding;
    BYTES bytes;
};

TEST(Value, BothWays) {
    const ROW rows[] = {{"AB", TEXT, {'A', 'B'}},
                        {"\xC3\xBC!", TEXT, {0xFC, '!'}},
                        {"A\xE2\x82\xAC", TWO_BYTE_TEXT, {'A', 0, 0xAC, 0x20}},
                        {"12-3. ", BCD_PLUS, {}}, // the blank at the end reads as fill
                        {"12-3.4", BCD_PLUS, {0x12, 0xB3, 0xC4}},
                        {"123", BCD_PLUS, {0x12, 0x3A}},
                        {"IPMI", SIX_BIT, {0x29, 0xDC, 0xA6}}, // the standard's own example, section 13
                        {"IP", SIX_BIT, {0x29, 0x0C}},
                        {"01 AB", BINARY, {0x01, 0xAB}},
                        {"", TEXT, {}}};
    for (const ROW& row : rows) {
        const Result<FIELD_VALUE> value = EncodeText(row.text, row.encoding);
        ASSERT_TRUE(value) << row.text;
        if (!row.bytes.empty()) {
            EXPECT_EQ(value->bytes, row.bytes) << row.text;
        }
        std::string text = row.text;
        text.erase(text.find_last_not_of(' ') + 1);
        EXPECT_EQ(DecodeText(row.encoding, value->bytes), text);
    }
}

TEST(Value, Refused) {
    const std::pair<std::string, ENCODING> rows[] = {{"A", TEXT},
                                                     {"\xE2\x82\xAC\xE2\x82\xAC", TEXT},
                                                     {"a\nb", TEXT},
                                                     {"a\xFFz", TEXT},
                                                     {"\xC0\x80z", TEXT},
                                                     {"abc", SIX_BIT},
                                                     {"1A", BCD_PLUS},
                                                     {"1", BINARY},
                                                     {"0g", BINARY},
                                                     {std::string(64, 'x'), TEXT},
                                                     {"\xF0\x9F\x98\x80", TWO_BYTE_TEXT},
                                                     {std::string(32, 'x'), TWO_BYTE_TEXT},
                                                     {"\xED\xA0\x80", TWO_BYTE_TEXT}};
    for (const auto& [text, encoding] : rows)
        EXPECT_FALSE(EncodeText(text, encoding)) << text;
}

TEST(Value, EncodingIsKeptWhereItHoldsTheValue) {
    const struct {
        const char* text;
        ENCODING before;
        BYTE language;
        ENCODING after;
    } rows[] = {{"ABC", SIX_BIT, 0, SIX_BIT},  {"abc", SIX_BIT, 0, TEXT},        {"AB ", SIX_BIT, 0, TEXT},
                {"12", BCD_PLUS, 0, BCD_PLUS}, {"AB12", BINARY, 0, BINARY},      {"serial", BINARY, 0, TEXT},
                {"X", TEXT, 0, SIX_BIT},       {"abc", TEXT, 53, TWO_BYTE_TEXT}, {"abc", TWO_BYTE_TEXT, 25, TEXT},
                {"", SIX_BIT, 0, SIX_BIT}};
    for (const auto& row : rows) {
        const Result<FIELD_VALUE> value = EncodeKeeping(row.text, row.before, row.language);
        ASSERT_TRUE(value) << row.text;
        EXPECT_EQ(value->encoding, row.after) << row.text;
    }
    EXPECT_FALSE(EncodeKeeping("x", TEXT, 0)) << "one byte of text, and nothing else has lower case";
}

TEST(Value, ShowsWhatIsNoText) {
    EXPECT_EQ(DecodeText(TEXT, BYTES{'a', 1, 0x9F, 0, 0}), "a\\x01\\x9F");
    EXPECT_EQ(DecodeText(TWO_BYTE_TEXT, BYTES{0x00, 0xD8, 'b', 0, 0x80}), "\\uD800b\\x80");
    EXPECT_EQ(DecodeText(BCD_PLUS, BYTES{0x1D}), "1?");
}

TEST(Value, Dates) {
    const std::pair<const char*, BYTES> rows[] = {{"1996-01-01T00:01Z", {1, 0, 0}},
                                                  {"2000-03-01T00:00Z", {0xA0, 0x6B, 0x21}},
                                                  {"2027-11-24T20:14Z", {0xFE, 0xFF, 0xFF}},
                                                  {"unspecified", {0, 0, 0}}};
    for (const auto& [text, bytes] : rows) {
        EXPECT_EQ(*ParseDate(text), bytes) << text;
        EXPECT_EQ(DateText(bytes), text);
    }
    EXPECT_EQ(DateText(BYTES{0xFF, 0xFF, 0xFF}), "unspecified");
    EXPECT_EQ(*ParseDate("2000-03-01"), *ParseDate("2000-03-01T00:00:00Z"));
    for (const char* text : {"1996-01-01", "2027-11-24T20:15Z", "2023-02-29", "2023-02-+3", "2023-01-01T24:00",
                             "2023-01-01T10:00:01", "2023-01-01Thh:ii", "now", ""})
        EXPECT_FALSE(ParseDate(text)) << text;
}

TEST(Value, NamesOfTheStandard) {
    EXPECT_EQ(*ParseChassisType("rackmount chassis"), BYTES{23});
    EXPECT_EQ(*ParseChassisType("0x24"), BYTES{36});
    EXPECT_EQ(ChassisTypeText(29), "Blade enclosure (29)");
    EXPECT_EQ(ChassisTypeText(37), "type 37") << "the standard names none";
    for (const char* text : {"", "0", "37", "0x", "256", "23x", "sofa"})
        EXPECT_FALSE(ParseChassisType(text)) << text;
    EXPECT_EQ(LanguageFromName("japanese"), 53);
    EXPECT_EQ(LanguageName(137), "");
    for (std::size_t position = 0; position < 12; ++position)
        for (const AREA_ID area : {AREA_ID::CHASSIS, AREA_ID::BOARD, AREA_ID::PRODUCT})
            EXPECT_EQ(ParseFieldName(FieldNameText(FieldAt(area, position))), FieldAt(area, position));
    for (const char* text :
         {"board", "board.custom0", "board.custom01", "chassis.language", "internal.type", "x.y", "board.custom2041"})
        EXPECT_FALSE(ParseFieldName(text)) << text;
}

} // namespace

} // namespace FruImage
