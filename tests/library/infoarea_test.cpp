// Fields and areas as the table shows and changes them.
#include "support.h"

#include <clocale>
#include <malloc.h>

namespace Frudata_Tests {
namespace {

using CAreaValueTest = CLibraryTest;

BYTES Bytes(const std::string& text) {
    return BYTES(text.begin(), text.end());
}

TEST_F(CAreaValueTest, EveryFieldWithTitleTextAndBytes) {
    // Texts number the custom fields from the last, bytes know the first two only.
    const struct {
        FRU_AREA area;
        struct {
            unsigned int firstSelector, count, firstTitle;
        } fixed;
        std::vector<std::wstring> texts;
        std::vector<std::string> data;
    } rows[] = {{FRU_AREA_CHASSIS, {2, 3, 10}, {L"T52", L"CP", L"CS1", L"cc"}, {"\x11", "CP", "CS1", "cc"}},
                {FRU_AREA_BOARD,
                 {5, 6, 14},
                 {L"T35 5 15 1996 21 21 0", L"BMaker", L"BName", L"BSer", L"\0224", L"BFile", L"c333", L"c22", L"c1"},
                 {"\1\2\3", "BMaker", "BName", "BSer", "\x12\x34", "BFile", "c1", "c22", "c22"}},
                {FRU_AREA_PRODUCT,
                 {11, 7, 21},
                 {L"PMaker", L"PName", L"PPart", L"PVer", L"PSer", L"Asset", L"", L"pc"},
                 {"PMaker", "PName", "PPart", "PVer", "PSer", "Asset", "", "pc"}}};
    for (const auto& row : rows) {
        LoadAndSelect(RichFru(), row.area);
        EXPECT_EQ(Told(m_table->GetNumberOfFields), row.texts.size());
        for (unsigned int field = 0; field < row.texts.size(); ++field) {
            SCOPED_TRACE(std::to_string(row.area) + "/" + std::to_string(field));
            EXPECT_EQ(Value(field), row.texts[field]);
            EXPECT_EQ(Data(field), Bytes(row.data[field]));
            const std::wstring title = L"T" + std::to_wstring(row.fixed.firstTitle + std::min(field, row.fixed.count));
            EXPECT_EQ(Told(m_table->GetFieldTitle), title);
            const auto selector = static_cast<FRU_FIELD>(row.fixed.firstSelector + field);
            EXPECT_EQ(field < row.fixed.count ? m_table->SelectFieldEnum(m_table, selector) : 0U, 0U);
            EXPECT_EQ(Told(m_table->GetFieldTitle), title);
        }
    }
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, FRU_AREA_INTERNAL_USE), 0U);
    EXPECT_EQ(m_table->SelectFieldEnum(m_table, static_cast<FRU_FIELD>(1)), 0U);
    EXPECT_STREQ(Told(m_table->GetFieldTitle), L"T9");
    EXPECT_EQ(Told(m_table->GetNumberOfFields), 1U);
}

TEST_F(CAreaValueTest, TextsEndAtAZeroByteAndAreEmptyWhereTheLocaleCannotConvert) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    LoadAndSelect(BoardFru(), FRU_AREA_BOARD);
    const std::pair<std::string, const wchar_t*> rows[] = {
        {std::string("ab\0cd", 5), L"ab"}, {"\xC3\xA4", L"\u00e4"}, {"ok\xFF\xFE", L""}, {std::string(63, 'x'), L""}};
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(Set(5, value), value.size() < 20 ? 0U : FRU_STATUS_SET_FIELD_FAILED);
        EXPECT_EQ(Value(5), text);
    }
    EXPECT_EQ(Data(5), Bytes("ok\xFF\xFE")) << "a refused value leaves the field";
    std::setlocale(LC_CTYPE, "C");
}

// The converter of such a locale takes a text that ends inside a character, and writes no terminator.
TEST_F(CAreaValueTest, TextsThatEndInsideACharacterEndThere) {
    ASSERT_EQ(setenv("LOCPATH", FRUDATA_TEST_LOCALES, 1), 0);
    ASSERT_NE(std::setlocale(LC_CTYPE, "zh_CN.GB18030"), nullptr) << "there is no locale in " FRUDATA_TEST_LOCALES;
    mallopt(M_PERTURB, 0xA5); // memory that is not written shows
    for (const auto& [bytes, text] :
         {std::pair("\x81\x30", L""), {"ab\x81\x30", L"ab"}, {"\x81\x30\x81\x30", L"\u0080"}}) {
        ASSERT_EQ(Load(WithLine(FruText(BoardFru()), "_FRU_TITLE", "_FRU_TITLE '" + std::string(bytes) + "'")), 0U);
        EXPECT_STREQ(Told(m_table->GetFruName), text);
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, FRU_AREA_BOARD), 0U);
        for (const unsigned int field : {1U, 6U}) { // a fixed one and a custom one
            EXPECT_EQ(Set(field, bytes), 0U);
            EXPECT_EQ(Value(field), text);
        }
    }
    mallopt(M_PERTURB, 0);
    std::setlocale(LC_CTYPE, "C");
}

TEST_F(CAreaValueTest, DateAndTimeCountMinutesFromTheEndOf1995) {
    LoadAndSelect(BoardFru(), FRU_AREA_BOARD);
    for (const auto& [bytes, text] : {std::pair(BYTES{0, 0, 0}, L"T35 12 31 1995 0 0 0"),
                                      {{1, 0, 0}, L"T35 12 31 1995 0 1 0"},
                                      {{0xA0, 0x05, 0}, L"T35 1 1 1996 0 0 0"},
                                      {{0xFF, 0xFF, 0xFF}, L"T35 11 23 2027 20 15 0"}}) {
        EXPECT_EQ(Set(0, std::string(bytes.begin(), bytes.end())), 0U);
        EXPECT_EQ(Value(0), text);
        EXPECT_EQ(Data(0), bytes);
    }
    for (const std::size_t length : {0U, 2U, 4U})
        EXPECT_EQ(Set(0, std::string(length, 'x')), FRU_STATUS_SET_FIELD_FAILED);
    EXPECT_EQ(LastError(), L"T133");
    EXPECT_EQ(Data(0), BYTES(3, 0xFF));
}

TEST_F(CAreaValueTest, ChassisTypesHaveNamesWithGaps) {
    FRU_BYTES fru = RichFru();
    fru.chassis[2] = 24;
    LoadAndSelect(fru, FRU_AREA_CHASSIS);
    EXPECT_ASSERTION(Value(0), "chassisinfoarea", "0");
    Set(0, "\x17");
    for (int type = 0; type < 256; ++type) {
        SCOPED_TRACE(type);
        const bool isType = type >= 1 && type <= 23;
        EXPECT_EQ(Set(0, std::string(1, static_cast<char>(type))), isType ? 0U : FRU_STATUS_SET_FIELD_FAILED);
        EXPECT_EQ(Data(0), BYTES{static_cast<UINT8>(isType ? type : 23)}) << "the last one set";
        if (type <= 9 || (type >= 16 && type <= 22))
            EXPECT_EQ(isType ? Value(0) : L"T35", L"T" + std::to_wstring(type + 35));
        else if (isType) {
            EXPECT_ASSERTION(Value(0), "chassisinfoarea", "0");
        }
    }
    EXPECT_EQ(Set(0, "\x01\x02"), FRU_STATUS_SET_FIELD_FAILED);
}

TEST_F(CAreaValueTest, RefusedValuesAreReportedByArea) {
    const std::tuple<FRU_AREA, unsigned int, std::size_t, const wchar_t*, const char*> rows[] = {
        {FRU_AREA_CHASSIS, 2, 20, L"T131", "FruData::"},
        {FRU_AREA_BOARD, 5, 22, L"T133", "CBoardInfoArea::SetFileId - FRU Data too long\r\n"},
        {FRU_AREA_PRODUCT, 5, 25, L"T132", "CProductInfoArea::SetAssetTag - FRU Data Too Long\r\n"}};
    for (const auto& [area, field, room, message, log] : rows) {
        LoadAndSelect(RichFru(), area);
        TakeLog();
        EXPECT_EQ(Set(field, std::string(room + 1, 'y')), FRU_STATUS_SET_FIELD_FAILED);
        EXPECT_EQ(LastError(), message);
        EXPECT_THAT(TakeLog(), testing::StartsWith(log));
        EXPECT_EQ(Told(m_table->GetMaxFieldSize), room - Data(field).size());
        EXPECT_EQ(Set(field, std::string(room, 'y')), 0U);
        EXPECT_EQ(Told(m_table->GetMaxFieldSize), 0U);
        EXPECT_EQ(m_table->SetFieldDataValue(m_table, nullptr, 1), FRU_STATUS_SET_FIELD_FAILED);
        EXPECT_FALSE(Told(m_table->IsModified));
    }
}

TEST_F(CAreaValueTest, TheAssetTagRoomIsThatOfTheProductAreaParsedLast) {
    FRU_BYTES fru, refused;
    fru.product =
        CompactArea(BYTES{1, 0, 0} + BYTES(5, 0xC0) + Field("asset") + BYTES{0xC0} + Field(std::string(23, 'c')), 64);
    refused.product = RichFru().product + BYTES{1};
    // 40 of 64 bytes are there. A FRU without a product area changes nothing, one with refused padding does.
    for (const auto& [loaded, status, length] :
         {std::tuple(fru, 0U, 64U - 40 + 5 - 1), {BoardFru(), 0U, 28U}, {refused, FRU_STATUS_FILE_READ_ERROR, 25U}}) {
        EXPECT_EQ(Load(FruText(loaded)), status);
        EXPECT_EQ(Told(m_table->GetAssetTagLength), length);
    }
}

TEST_F(CAreaValueTest, AreasAsBytes) {
    const std::tuple<FRU_AREA, BYTES, std::vector<unsigned int>, std::vector<unsigned int>> rows[] = {
        {FRU_AREA_COMMON_HEADER, {1, 1, 2, 3, 4, 5, 0, 0xF0}, {8}, {7, 16}},
        {FRU_AREA_INTERNAL_USE, RichFru().internalUse, {4, 600}, {3}},
        {FRU_AREA_MULTIRECORD, RichFru().multiRecord, {14, 600}, {13, 12, 4}}};
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    UINT8 buffer[600];
    for (const auto& [area, data, enough, tooSmall] : rows) {
        m_table->SelectAreaEnum(m_table, area);
        for (unsigned int length : tooSmall) {
            EXPECT_EQ(m_table->GetAreaData(m_table, buffer, length), FRU_STATUS_BUFFER_TOO_SMALL) << area;
            EXPECT_EQ(length, 0U);
            EXPECT_EQ(LastError(), L"T125");
        }
        for (unsigned int length : enough) {
            EXPECT_EQ(m_table->GetAreaData(m_table, buffer, length), 0U) << area;
            EXPECT_EQ(BYTES(buffer, buffer + length), data);
        }
        EXPECT_EQ(area == FRU_AREA_COMMON_HEADER ? 8 : Told(m_table->GetAreaSize), data.size());
    }
    unsigned int length = 8;
    EXPECT_EQ(m_table->GetAreaData(m_table, nullptr, length), FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(LastError(), L"T125");
    for (const EFI_STATUS status :
         {m_table->GetAreaData(nullptr, buffer, length), m_table->GetAreaSize(nullptr, length),
          m_table->SetAreaData(m_table, nullptr, 0), m_table->SetAreaData(nullptr, buffer, 4)})
        EXPECT_EQ(status, FRU_STATUS_NOT_INITIALIZED);
}

TEST_F(CAreaValueTest, AreasAreRewritten) {
    LoadAndSelect(RichFru(), FRU_AREA_INTERNAL_USE);
    UINT8 buffer[64] = {9, 8, 7, 6, 5};
    for (const unsigned int length : {5U, 3U, 4U}) {
        EXPECT_EQ(Value(0), L"01 AB 02 81");
        EXPECT_EQ(m_table->SetAreaData(m_table, buffer, length), length == 4 ? 0U : FRU_STATUS_UNSUPPORTED);
    }
    EXPECT_EQ(Value(0), L"09 08 07 06");

    // The second chain's last record claims more than is there: its bytes count as zero.
    const std::pair<BYTES, BYTES> chains[] = {{{1, 2, 1, 4, 5, 0xAA}, {1, 2, 1, 4, 5, 0xAA}},
                                              {{1, 2, 3, 4, 5, 0xBB}, {1, 2, 3, 4, 5, 0xBB, 0, 0}},
                                              {{1, 2}, {1, 2, 0, 0, 0}},
                                              {{}, {}}};
    m_table->SelectAreaEnum(m_table, FRU_AREA_MULTIRECORD);
    for (const auto& [set, got] : chains) {
        unsigned int length = sizeof buffer;
        std::copy(set.begin(), set.end(), buffer);
        EXPECT_EQ(m_table->SetAreaData(m_table, buffer, static_cast<unsigned int>(set.size())), 0U);
        EXPECT_EQ(m_table->GetAreaData(m_table, buffer, length), 0U);
        EXPECT_EQ(BYTES(buffer, buffer + length), got);
        EXPECT_EQ(Told(m_table->GetAreaSize), set.size());
    }
}

} // namespace
} // namespace Frudata_Tests
