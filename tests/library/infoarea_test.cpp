// Fields and areas as the table shows and changes them.
#include "support.h"

#include <clocale>

namespace Frudata_Tests {
namespace {

using CAreaValueTest = CLibraryTest;

TEST_F(CAreaValueTest, EveryFieldAsTextAndAsBytes) {
    const struct {
        FRU_AREA area;
        unsigned int field;
        const wchar_t* text;
        BYTES data;
    } rows[] = {
        {FRU_AREA_CHASSIS, 0, L"T52", {0x11}},
        {FRU_AREA_CHASSIS, 1, L"CP", Bytes("CP")},
        {FRU_AREA_CHASSIS, 2, L"CS1", Bytes("CS1")},
        {FRU_AREA_CHASSIS, 3, L"cc", Bytes("cc")},
        {FRU_AREA_BOARD, 0, L"T35 5 15 1996 21 21 0", {1, 2, 3}},
        {FRU_AREA_BOARD, 1, L"BMaker", Bytes("BMaker")},
        {FRU_AREA_BOARD, 2, L"BName", Bytes("BName")},
        {FRU_AREA_BOARD, 3, L"BSer", Bytes("BSer")},
        {FRU_AREA_BOARD,
         4,
         L"\x12"
         L"4",
         {0x12, 0x34}},
        {FRU_AREA_BOARD, 5, L"BFile", Bytes("BFile")},
        // Texts number the custom fields from the last, bytes know the first two only.
        {FRU_AREA_BOARD, 6, L"c333", Bytes("c1")},
        {FRU_AREA_BOARD, 7, L"c22", Bytes("c22")},
        {FRU_AREA_BOARD, 8, L"c1", Bytes("c22")},
        {FRU_AREA_PRODUCT, 0, L"PMaker", Bytes("PMaker")},
        {FRU_AREA_PRODUCT, 1, L"PName", Bytes("PName")},
        {FRU_AREA_PRODUCT, 2, L"PPart", Bytes("PPart")},
        {FRU_AREA_PRODUCT, 3, L"PVer", Bytes("PVer")},
        {FRU_AREA_PRODUCT, 4, L"PSer", Bytes("PSer")},
        {FRU_AREA_PRODUCT, 5, L"Asset", Bytes("Asset")},
        {FRU_AREA_PRODUCT, 6, L"", {}},
        {FRU_AREA_PRODUCT, 7, L"pc", Bytes("pc")},
    };
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    for (const auto& row : rows) {
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, row.area), 0U);
        EXPECT_EQ(Value(row.field), row.text) << row.area << "/" << row.field;
        EXPECT_EQ(Data(row.field), row.data) << row.area << "/" << row.field;
    }
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, FRU_AREA_INTERNAL_USE), 0U);
    EXPECT_EQ(Value(0), L"01 AB 02 81");
}

TEST_F(CAreaValueTest, TextsEndAtAZeroByteAndAreEmptyWhereTheLocaleCannotConvert) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    LoadAndSelect(BoardFru(), FRU_AREA_BOARD);
    const std::pair<std::string, const wchar_t*> rows[] = {
        {std::string("ab\0cd", 5), L"ab"}, {"\xC3\xA4", L"\u00e4"}, {"ok\xFF\xFE", L""}, {std::string(63, 'x'), L""}};
    for (const auto& [value, text] : rows) {
        const bool fits = value.size() < 20;
        EXPECT_EQ(Set(5, value), fits ? 0U : FRU_STATUS_SET_FIELD_FAILED);
        EXPECT_EQ(Value(5), text);
    }
    EXPECT_EQ(Data(5), Bytes("ok\xFF\xFE")) << "a refused value leaves the field";
    std::setlocale(LC_CTYPE, "C");
}

TEST_F(CAreaValueTest, DateAndTimeCountMinutesFromTheEndOf1995) {
    const std::pair<BYTES, const wchar_t*> rows[] = {{{0, 0, 0}, L"T35 12 31 1995 0 0 0"},
                                                     {{1, 0, 0}, L"T35 12 31 1995 0 1 0"},
                                                     {{0xA0, 0x05, 0}, L"T35 1 1 1996 0 0 0"},
                                                     {{0xFF, 0xFF, 0xFF}, L"T35 11 23 2027 20 15 0"}};
    LoadAndSelect(BoardFru(), FRU_AREA_BOARD);
    for (const auto& [bytes, text] : rows) {
        EXPECT_EQ(Set(0, std::string(bytes.begin(), bytes.end())), 0U);
        EXPECT_EQ(Value(0), text);
        EXPECT_EQ(Data(0), bytes);
    }
    for (const std::size_t length : {0U, 2U, 4U})
        EXPECT_EQ(Set(0, std::string(length, 'x')), FRU_STATUS_SET_FIELD_FAILED);
    EXPECT_EQ(LastError(), L"T133");
    EXPECT_EQ(Data(0), Fill(3, 0xFF));
}

TEST_F(CAreaValueTest, ChassisTypesHaveNamesWithGaps) {
    LoadAndSelect(RichFru(), FRU_AREA_CHASSIS);
    Set(0, "\x17");
    for (int type = 0; type < 256; ++type) {
        SCOPED_TRACE(type);
        const bool isType = type >= 1 && type <= 23;
        EXPECT_EQ(Set(0, std::string(1, static_cast<char>(type))), isType ? 0U : FRU_STATUS_SET_FIELD_FAILED);
        if (!isType)
            EXPECT_EQ(Data(0), BYTES{23}) << "the last one set";
        else if (type <= 9 || (type >= 16 && type <= 22))
            EXPECT_EQ(Value(0), L"T" + std::to_wstring(type + 35));
        else
            EXPECT_ASSERTION(Value(0), "chassisinfoarea", "0");
    }
    EXPECT_EQ(Set(0, "\x01\x02"), FRU_STATUS_SET_FIELD_FAILED);
    FRU_BYTES unnamed = RichFru();
    unnamed.chassis[2] = 24;
    LoadAndSelect(unnamed, FRU_AREA_CHASSIS);
    EXPECT_ASSERTION(Value(0), "chassisinfoarea", "0");
}

TEST_F(CAreaValueTest, FieldsGrowByThePaddingOfTheirAreaOnly) {
    const struct {
        FRU_AREA area;
        unsigned int field, pad, room;
        const wchar_t* message;
        const char* trace;
    } rows[] = {{FRU_AREA_CHASSIS, 2, 17, 20, L"T131", "FruData::"},
                {FRU_AREA_BOARD, 5, 17, 22, L"T133", "CBoardInfoArea::SetFileId - FRU Data too long\r\n"},
                {FRU_AREA_PRODUCT, 5, 20, 25, L"T132", "CProductInfoArea::SetAssetTag - FRU Data Too Long\r\n"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.area);
        LoadAndSelect(RichFru(), row.area);
        std::filesystem::remove("DBGLOG.txt");
        EXPECT_EQ(Set(row.field, std::string(row.room + 1, 'y')), FRU_STATUS_SET_FIELD_FAILED);
        EXPECT_EQ(LastError(), row.message);
        EXPECT_THAT(ReadFile("DBGLOG.txt"), testing::StartsWith(row.trace));
        EXPECT_EQ(MaxFieldSize(), row.pad);
        EXPECT_EQ(Set(row.field, std::string(row.room, 'y')), 0U);
        EXPECT_EQ(MaxFieldSize(), 0U);
        EXPECT_EQ(m_table->SetFieldDataValue(m_table, nullptr, 1), FRU_STATUS_SET_FIELD_FAILED);
    }
    bool modified = true;
    EXPECT_EQ(m_table->IsModified(m_table, modified), 0U);
    EXPECT_FALSE(modified);
}

TEST_F(CAreaValueTest, TheAssetTagRoomIsThatOfTheProductAreaParsedLast) {
    unsigned int length = 0;
    const BYTES product =
        CompactArea(BYTES{1, 0, 0} + Fill(5, 0xC0) + Field("asset") + BYTES{0xC0} + Field(std::string(23, 'c')), 64);
    ASSERT_EQ(product.size(), 40U);
    FRU_BYTES fru;
    fru.product = product;
    ASSERT_EQ(Load(FruText(fru)), 0U);
    EXPECT_EQ(m_table->GetAssetTagLength(m_table, length), 0U);
    EXPECT_EQ(length, 64U - 40 + 5 - 1);
    ASSERT_EQ(Load(FruText(BoardFru())), 0U);
    EXPECT_EQ(m_table->GetAssetTagLength(m_table, length), 0U);
    EXPECT_EQ(length, 28U) << "a FRU without a product area changes nothing";
    fru.product = RichFru().product + BYTES{1};
    EXPECT_EQ(Load(FruText(fru)), FRU_STATUS_FILE_READ_ERROR);
    EXPECT_EQ(m_table->GetAssetTagLength(m_table, length), 0U);
    EXPECT_EQ(length, 25U) << "even when its padding is refused";
}

TEST_F(CAreaValueTest, AreasAsBytes) {
    const FRU_BYTES fru = RichFru();
    const BYTES header = {1, 1, 2, 3, 4, 5, 0, 0xF0};
    const struct {
        FRU_AREA area;
        unsigned int room;
        EFI_STATUS status;
        BYTES data;
    } rows[] = {
        {FRU_AREA_COMMON_HEADER, 8, 0, header},
        {FRU_AREA_COMMON_HEADER, 16, FRU_STATUS_BUFFER_TOO_SMALL, {}},
        {FRU_AREA_COMMON_HEADER, 7, FRU_STATUS_BUFFER_TOO_SMALL, {}},
        {FRU_AREA_INTERNAL_USE, 3, FRU_STATUS_BUFFER_TOO_SMALL, {}},
        {FRU_AREA_INTERNAL_USE, 4, 0, fru.internalUse},
        {FRU_AREA_INTERNAL_USE, 600, 0, fru.internalUse},
        {FRU_AREA_MULTIRECORD, 13, FRU_STATUS_BUFFER_TOO_SMALL, {}},
        {FRU_AREA_MULTIRECORD, 12, FRU_STATUS_BUFFER_TOO_SMALL, {}},
        {FRU_AREA_MULTIRECORD, 4, FRU_STATUS_BUFFER_TOO_SMALL, {}},
        {FRU_AREA_MULTIRECORD, 14, 0, fru.multiRecord},
        {FRU_AREA_MULTIRECORD, 600, 0, fru.multiRecord},
    };
    ASSERT_EQ(Load(FruText(fru)), 0U);
    for (const auto& row : rows) {
        m_table->SelectAreaEnum(m_table, row.area);
        std::vector<UINT8> buffer(row.room);
        unsigned int length = row.room, size = 0;
        EXPECT_EQ(m_table->GetAreaData(m_table, buffer.data(), length), row.status) << row.area << "/" << row.room;
        EXPECT_EQ(BYTES(buffer.begin(), buffer.begin() + length), row.data) << row.area << "/" << row.room;
        EXPECT_EQ(LastError(), row.status ? L"T125" : L"");
        if (row.area != FRU_AREA_COMMON_HEADER && row.status == 0) {
            EXPECT_EQ(m_table->GetAreaSize(m_table, size), 0U);
            EXPECT_EQ(size, row.data.size());
        }
    }
    unsigned int length = 8;
    EXPECT_EQ(m_table->GetAreaData(m_table, nullptr, length), FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(LastError(), L"T125");
    EXPECT_EQ(m_table->GetAreaData(nullptr, gPwd, length), FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(m_table->GetAreaSize(nullptr, length), FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(m_table->SetAreaData(m_table, nullptr, 0), FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(m_table->SetAreaData(nullptr, gPwd, 4), FRU_STATUS_NOT_INITIALIZED);
}

TEST_F(CAreaValueTest, AreasAreRewritten) {
    LoadAndSelect(RichFru(), FRU_AREA_INTERNAL_USE);
    const BYTES bytes = {9, 8, 7, 6, 5};
    EXPECT_EQ(m_table->SetAreaData(m_table, bytes.data(), 5), FRU_STATUS_UNSUPPORTED);
    EXPECT_EQ(m_table->SetAreaData(m_table, bytes.data(), 3), FRU_STATUS_UNSUPPORTED);
    EXPECT_EQ(Value(0), L"01 AB 02 81");
    EXPECT_EQ(m_table->SetAreaData(m_table, bytes.data(), 4), 0U);
    EXPECT_EQ(Value(0), L"09 08 07 06");

    // The second chain's last record claims more than is there: its bytes count as zero.
    const std::pair<BYTES, BYTES> chains[] = {{{1, 2, 1, 4, 5, 0xAA}, {1, 2, 1, 4, 5, 0xAA}},
                                              {{1, 2, 3, 4, 5, 0xBB}, {1, 2, 3, 4, 5, 0xBB, 0, 0}},
                                              {{1, 2}, {1, 2, 0, 0, 0}},
                                              {{}, {}}};
    m_table->SelectAreaEnum(m_table, FRU_AREA_MULTIRECORD);
    for (const auto& [set, got] : chains) {
        UINT8 buffer[64];
        unsigned int length = sizeof buffer, size = 0;
        EXPECT_EQ(m_table->SetAreaData(m_table, set.empty() ? buffer : set.data(), static_cast<unsigned>(set.size())),
                  0U);
        EXPECT_EQ(m_table->GetAreaData(m_table, buffer, length), 0U);
        EXPECT_EQ(BYTES(buffer, buffer + length), got);
        EXPECT_EQ(m_table->GetAreaSize(m_table, size), 0U);
        EXPECT_EQ(size, set.size());
    }
}

} // namespace
} // namespace Frudata_Tests
