// The FRU text file writer.
#include "support.h"

namespace Frudata_Tests {
namespace {

using CWriterTest = CLibraryTest;

const char g_rich[] =
    "_LF_NAME\t'out.fru'\n_LF_VERSION\t'2.FFFFFF81'\n_LF_FMT_VER\t'1.50'\n_IPMI_VERSION\t'1.00'\n\n\n_FRU (\n"
    "_FRU_TITLE\t'Title'\n_START_ADDR\t0000\n_DATA_LEN\t00BA\n_NVS_TYPE\t'IMBDEVICE'\n_DEV_ID\t\t05\n"
    "_DEV_CNTR\t20\n_NVS_LUN\t01\n_DEV_BUS\tFF\n_DEV_ADDRESS\t3C\n"
    "_SEE_COMMON\n\t01\n\t01\n\t02\n\t03\n\t04\n\t05\n\t00\n\tF0\n\n\n_SEE_INTERNAL\n\n\t01 AB 02 81 \n\n\n"
    "_SEE_CHASSIS\n01\n04\n11\nC2\n'CP'\nC3\n'CS1'\nC2\n'cc'\nC1\n\n"
    "_SEE_BOARD\n01\n08\n19\n01 02 03\nC6\n'BMaker'\nC5\n'BName'\nC4\n'BSer'\n42\n12 34 \n"
    "C5\n'BFile'\nC2\n'c1'\nC3\n'c22'\nC4\n'c333'\nC1\n\n"
    "_SEE_PRODUCT\n01\n08\n00\nC6\n'PMaker'\nC5\n'PName'\nC5\n'PPart'\nC4\n'PVer'\nC4\n'PSer'\n"
    "C5\n'Asset'\nC0\nC2\n'pc'\nC1\n\n"
    "_SEE_MULTIREC\nC0\n02\n03\nFA\n41\n01 02 03 \n C1\n82\n01\nF6\nC6\n0A \n \n)\n";

TEST_F(CWriterTest, WritesEveryByteOfARichFruAndReadsItBack) {
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    EXPECT_EQ(Saved(), g_rich);
    ASSERT_EQ(Load(g_rich), 0U);
    EXPECT_EQ(Saved(), g_rich);
    m_table->SelectAreaEnum(m_table, FRU_AREA_BOARD);
    EXPECT_EQ(Told(m_table->GetMaxFieldSize), 17U);
    EXPECT_EQ(Set(4, "typed"), 0U);
    EXPECT_THAT(Saved(), testing::HasSubstr("\nC5\n'typed'\nC5\n'BFile'\n")) << "set values are 8-bit text";
    for (const wchar_t* name : {L"missing/out.fru", L"enus"}) { // a directory is no file either
        TakeLog();
        EXPECT_EQ(m_table->SaveConfigurationToFile(m_table, name, nullptr), FRU_STATUS_FILE_CREATE_ERROR);
        EXPECT_EQ(LastError(), std::wstring(L"T100 ") + name);
        EXPECT_EQ(TakeLog(), "CFru::SaveFRUFileHeader - Error Writing File\r\n");
    }
}

TEST_F(CWriterTest, PiecesOfOtherFrus) {
    const BYTES typedFields =
        Field("bin", 0) + Field("bcd", 0x40) + Field("six", 0x80) + Field(std::string("a\0b", 3)) + BYTES{0x40};
    const std::string empty = FruText({}), rows = FruText({.internalUse = BYTES(16, 0x11) + BYTES(2, 0x80)});
    const std::string types = FruText({.board = CompactArea(BYTES{1, 0, 0, 0, 0, 0} + typedFields, 64)});
    const std::string oneByteFields = FruText({.chassis = CompactArea({1, 0, 1, 0xC1, 'x', 0xC1, 'y'}, 64)});
    const std::string row = "EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE EE ";
    const std::pair<std::string, std::string> pieces[] = {
        {empty, "_DEV_ADDRESS\t3C\n_SEE_COMMON\n\t01\n\t00\n\t00\n\t00\n\t00\n\t00\n\t00\n\tFF\n\n\n)\n"},
        {empty, "_LF_VERSION\t'0.00'\n"},
        {FruText({.internalUse = {0x1F}}), "_LF_VERSION\t'0.1F'\n"},
        {rows, "_SEE_INTERNAL\n\n\t11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 \n\t80 80 \n\n\n)\n"},
        {rows, "_LF_VERSION\t'FFFFFF80.FFFFFF80'\n"},
        {types, "00 00 00\n03\n43\n62 63 64 \n83\nC3\n'a'\n40\nC1\n\n)\n"},
        {types, "_DATA_LEN\t0048\n"}, // of the whole image
        {oneByteFields, "_SEE_CHASSIS\n01\n08\n01\nC1\nC1\nC1\n\n)\n"},
        {FruText({.multiRecord = BYTES{1, 2, 34, 3, 4} + BYTES(34, 0xEE)}),
         "_SEE_MULTIREC\n01\n02\n22\n03\n04\n" + row + "\n " + row + "\n EE EE \n \n)\n"},
        {WithLine(empty, "_FRU_TITLE", ""), "_FRU_TITLE\t''\n_START_ADDR\t0000\n"},
        {WithLine(empty, "_NVS_TYPE", "_NVS_TYPE 'AT24CO2'"), "_NVS_TYPE\t'AT24CO2'\n_DEV_ID\t\t"},
        {WithLine(empty, "_NVS_TYPE", "_NVS_TYPE 'DS1624S'"), "_NVS_TYPE\t'DS1624S'\n_DEV_ID\t\t"},
    };
    for (const auto& [text, piece] : pieces) {
        ASSERT_EQ(Load(text), 0U) << text;
        EXPECT_THAT(Saved(), testing::HasSubstr(piece));
    }
    Restart(FRU_PLATFORM_MBMC);
    ASSERT_EQ(Load(WithLine(empty, "_NVS_TYPE", "_NVS_TYPE 'MBMC_FRU'\n_MBMC_SIZE_ADRS 1\n_MBMC_SIZE_DATA 2")), 0U);
    EXPECT_THAT(Saved(), testing::HasSubstr("_NVS_TYPE\t'IMBDEVICE'\n_DEV_ID\t\t00\n"));
    EXPECT_THAT(Saved(), testing::Not(testing::HasSubstr("MBMC")));
}

} // namespace
} // namespace Frudata_Tests
