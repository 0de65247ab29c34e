// The FRU text file writer.
#include "support.h"

namespace Frudata_Tests {
namespace {

class CWriterTest : public CLibraryTest {
  protected:
    std::string Save(const wchar_t* name = L"out.fru") {
        EXPECT_EQ(m_table->SaveConfigurationToFile(m_table, name, nullptr), 0U);
        const std::wstring wide = name;
        return ReadFile(std::string(wide.begin(), wide.end()));
    }
};

const char g_rich[] = "_LF_NAME\t'out.fru'\n"
                      "_LF_VERSION\t'2.FFFFFF81'\n"
                      "_LF_FMT_VER\t'1.50'\n"
                      "_IPMI_VERSION\t'1.00'\n\n\n"
                      "_FRU (\n"
                      "_FRU_TITLE\t'Title'\n"
                      "_START_ADDR\t0000\n"
                      "_DATA_LEN\t00BA\n"
                      "_NVS_TYPE\t'IMBDEVICE'\n"
                      "_DEV_ID\t\t05\n"
                      "_DEV_CNTR\t20\n"
                      "_NVS_LUN\t01\n"
                      "_DEV_BUS\tFF\n"
                      "_DEV_ADDRESS\t3C\n"
                      "_SEE_COMMON\n\t01\n\t01\n\t02\n\t03\n\t04\n\t05\n\t00\n\tF0\n\n\n"
                      "_SEE_INTERNAL\n\n\t01 AB 02 81 \n\n\n"
                      "_SEE_CHASSIS\n01\n04\n11\nC2\n'CP'\nC3\n'CS1'\nC2\n'cc'\nC1\n\n"
                      "_SEE_BOARD\n01\n08\n19\n01 02 03\nC6\n'BMaker'\nC5\n'BName'\nC4\n'BSer'\n42\n12 34 \n"
                      "C5\n'BFile'\nC2\n'c1'\nC3\n'c22'\nC4\n'c333'\nC1\n\n"
                      "_SEE_PRODUCT\n01\n08\n00\nC6\n'PMaker'\nC5\n'PName'\nC5\n'PPart'\nC4\n'PVer'\nC4\n'PSer'\n"
                      "C5\n'Asset'\nC0\nC2\n'pc'\nC1\n\n"
                      "_SEE_MULTIREC\nC0\n02\n03\nFA\n41\n01 02 03 \n C1\n82\n01\nF6\nC6\n0A \n \n"
                      ")\n";

TEST_F(CWriterTest, WritesEveryByteOfARichFru) {
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    EXPECT_EQ(Save(), g_rich);
}

TEST_F(CWriterTest, WhatIsWrittenReadsBack) {
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    const std::string first = Save();
    ASSERT_EQ(m_table->LoadConfigurationFromFile(m_table, L"out.fru", nullptr), 0U) << first;
    EXPECT_EQ(Save(L"again"), WithLine(first, "_LF_NAME", "_LF_NAME\t'again'"));
    m_table->SelectAreaEnum(m_table, FRU_AREA_BOARD);
    EXPECT_EQ(MaxFieldSize(), 17U);
    EXPECT_EQ(Set(4, "typed"), 0U);
    EXPECT_THAT(Save(), testing::HasSubstr("\nC5\n'typed'\nC5\n'BFile'\n")) << "set values are 8-bit text";
}

TEST_F(CWriterTest, PiecesOfOtherFrus) {
    FRU_BYTES empty, longInternal, types, oneByteFields, longRecord, shortInternal;
    longInternal.internalUse = Fill(16, 0x11) + Fill(2, 0x80);
    types.board = CompactArea(BYTES{1, 0, 0, 0, 0, 0} + Field("bin", 0) + Field("bcd", 0x40) + Field("six", 0x80) +
                                  Field(std::string("a\0b", 3)) + BYTES{0x40},
                              64);
    oneByteFields.chassis = CompactArea(BYTES{1, 0, 1} + BYTES{0xC1, 'x', 0xC1, 'y'}, 64);
    longRecord.multiRecord = BYTES{1, 2, 34, 3, 4} + Fill(34, 0xEE);
    shortInternal.internalUse = {0x1F};
    std::string row = "EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE ";
    const struct {
        const char* name;
        std::string text;
        std::string piece;
    } rows[] = {
        {"no areas", FruText(empty),
         "_DEV_ADDRESS\t3C\n_SEE_COMMON\n\t01\n\t00\n\t00\n\t00\n\t00\n\t00\n\t00\n\tFF\n\n\n)\n"},
        {"no internal use area", FruText(empty), "_LF_VERSION\t'0.00'\n"},
        {"internal use area of one byte", FruText(shortInternal), "_LF_VERSION\t'0.1F'\n"},
        {"internal use rows", FruText(longInternal),
         "_SEE_INTERNAL\n\n\t11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 \n\t80 80 \n\n\n)\n"},
        {"both version bytes negative", FruText(longInternal), "_LF_VERSION\t'FFFFFF80.FFFFFF80'\n"},
        {"field types", FruText(types), "00 00 00\n03\n43\n62 63 64 \n83\nC3\n'a'\n40\nC1\n\n)\n"},
        {"end marker as a field", FruText(oneByteFields), "_SEE_CHASSIS\n01\n08\n01\nC1\nC1\nC1\n\n)\n"},
        {"record rows", FruText(longRecord),
         "_SEE_MULTIREC\n01\n02\n22\n03\n04\n" + row + "\n " + row + "\n EE EE \n \n)\n"},
        {"length of the whole image", FruText(types), "_DATA_LEN\t0048\n"},
        {"no title", WithLine(FruText(empty), "_FRU_TITLE", ""), "_FRU_TITLE\t''\n_START_ADDR\t0000\n"},
        {"AT24CO2", WithLine(FruText(empty), "_NVS_TYPE", "_NVS_TYPE 'AT24CO2'"), "_NVS_TYPE\t'AT24CO2'\n_DEV_ID\t\t"},
        {"DS1624S", WithLine(FruText(empty), "_NVS_TYPE", "_NVS_TYPE 'DS1624S'"), "_NVS_TYPE\t'DS1624S'\n_DEV_ID\t\t"},
    };
    for (const auto& r : rows) {
        ASSERT_EQ(Load(r.text), 0U) << r.name;
        EXPECT_THAT(Save(), testing::HasSubstr(r.piece)) << r.name;
    }
}

TEST_F(CWriterTest, TheMbmcTypeIsWrittenAsImbDevice) {
    m_table->DeInitialize(m_table);
    m_table->Initialize(m_table, FRU_PLATFORM_MBMC);
    ASSERT_EQ(Load(WithLine(FruText({}), "_NVS_TYPE", "_NVS_TYPE 'MBMC_FRU'\n_MBMC_SIZE_ADRS 1\n_MBMC_SIZE_DATA 2")),
              0U);
    EXPECT_THAT(Save(), testing::HasSubstr("_NVS_TYPE\t'IMBDEVICE'\n_DEV_ID\t\t00\n"));
    EXPECT_THAT(Save(), testing::Not(testing::HasSubstr("MBMC")));
}

TEST_F(CWriterTest, UnwritableFiles) {
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    std::filesystem::create_directory("directory");
    for (const wchar_t* name : {L"missing/out.fru", L"directory"}) {
        std::filesystem::remove("DBGLOG.txt");
        EXPECT_EQ(m_table->SaveConfigurationToFile(m_table, name, nullptr), FRU_STATUS_FILE_CREATE_ERROR);
        EXPECT_EQ(LastError(), std::wstring(L"T100 ") + name);
        EXPECT_EQ(ReadFile("DBGLOG.txt"), "CFru::SaveFRUFileHeader - Error Writing File\r\n");
    }
}

} // namespace
} // namespace Frudata_Tests
