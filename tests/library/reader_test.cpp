// The FRU text file reader: what it takes, what it refuses and what it says then.
#include "support.h"

namespace Frudata_Tests {
namespace {

class CReaderTest : public CLibraryTest {
  protected:
    /// What was read, as the writer shows it.
    std::string Saved() {
        EXPECT_EQ(m_table->SaveConfigurationToFile(m_table, L"out.fru", nullptr), 0U);
        return ReadFile("out.fru");
    }
    void StartOnMbmcPlatform() {
        m_table->DeInitialize(m_table);
        m_table->Initialize(m_table, FRU_PLATFORM_MBMC);
    }
};

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

std::string MbmcText(const std::string& address, const std::string& data) {
    std::string text = WithLine(FruText(BoardFru()), "_NVS_TYPE",
                                "_NVS_TYPE 'MBMC_FRU'\n_MBMC_SIZE_ADRS " + address + "\n_MBMC_SIZE_DATA " + data);
    for (const char* skipped : {"_DEV_ID", "_DEV_CNTR", "_NVS_LUN"})
        text = WithLine(text, skipped, "");
    return text;
}

constexpr char BAD_VALUE[] = "Unexpected Error while reading file\r\n";

TEST_F(CReaderTest, RefusedFiles) {
    const std::string good = FruText(RichFru());
    FRU_BYTES badChassis = RichFru(), badBoard = RichFru(), badProduct = RichFru();
    badChassis.chassis[1] = badBoard.board[1] = badProduct.product[1] = 1;
    FRU_BYTES large;
    large.internalUse = Fill(513, 1);
    const std::string quoted = WithLine(good, "01Ab", Hex(Fill(500, 1)) + "\n'1234567890abc'");
    const struct {
        const char* name;
        std::string text;
        const wchar_t* message;
        const char* log;
    } rows[] = {
        {"empty", "", L"T89 in.fru", "CFru::ReadFRUFromFile - Unexpected\r\n"},
        {"comments only", "// a\n\n  // b", L"T98 in.fru", "CFru::ReadFRUFromFile - Unexpected EOF\r\n"},
        {"title unquoted", WithLine(good, "_FRU_TITLE", "_FRU_TITLE Title"), L"T90 T71 in.fru", BAD_VALUE},
        {"title cut by comment", WithLine(good, "_FRU_TITLE", "_FRU_TITLE 'a//b'"), L"T90 T71 in.fru", BAD_VALUE},
        {"length", WithLine(good, "_DATA_LEN", "_DATA_LEN 10000"), L"T90 T76 in.fru", BAD_VALUE},
        {"negative length", WithLine(good, "_DATA_LEN", "_DATA_LEN -1"), L"T90 T76 in.fru", BAD_VALUE},
        {"length not hex", WithLine(good, "_DATA_LEN", "_DATA_LEN len"), L"T90 T76 in.fru", BAD_VALUE},
        {"length not first", WithLine(good, "_DATA_LEN", "x _DATA_LEN 10"), L"T90 T76 in.fru", BAD_VALUE},
        {"type unquoted", WithLine(good, "_NVS_TYPE", "_NVS_TYPE IMBDEVICE"), L"T90 T77 in.fru", BAD_VALUE},
        {"type unknown", WithLine(good, "_NVS_TYPE", "_NVS_TYPE 'AT24C02'"), L"T90 T77 in.fru", BAD_VALUE},
        {"type not here", WithLine(good, "_NVS_TYPE", "_NVS_TYPE 'MBMC_FRU'"), L"T90 T77 in.fru", BAD_VALUE},
        {"id", WithLine(good, "_DEV_ID", "_DEV_ID 100"), L"T90 T78 in.fru", BAD_VALUE},
        {"id not hex", WithLine(good, "_DEV_ID", "_DEV_ID g"), L"T90 T78 in.fru", BAD_VALUE},
        {"controller", WithLine(good, "_DEV_CNTR", "_DEV_CNTR 100"), L"T90 T79 in.fru", BAD_VALUE},
        {"controller not hex", WithLine(good, "_DEV_CNTR", "_DEV_CNTR"), L"T90 T79 in.fru", BAD_VALUE},
        {"lun", WithLine(good, "_NVS_LUN", "_NVS_LUN 100"), L"T90 T80 in.fru", BAD_VALUE},
        {"lun not first", WithLine(good, "_NVS_LUN", "a _NVS_LUN 1"), L"T90 T80 in.fru", BAD_VALUE},
        {"bus", WithLine(good, "_DEV_BUS", "_DEV_BUS 100"), L"T90 T81 in.fru", BAD_VALUE},
        {"bus not hex", WithLine(good, "_DEV_BUS", "_DEV_BUS '1'"), L"T90 T81 in.fru", BAD_VALUE},
        {"address", WithLine(good, "_DEV_ADDRESS", "_DEV_ADDRESS FFFFFFFF"), L"T90 T82 in.fru", BAD_VALUE},
        {"address not hex", WithLine(good, "_DEV_ADDRESS", "_DEV_ADDRESS ?"), L"T90 T82 in.fru", BAD_VALUE},
        {"character", WithLine(good, "01Ab", "01 0G"), L"T96 T7 in.fru", "CFru::ParseArea - Unexpected Character\r\n"},
        {"header character", WithLine(good, "_SEE_COMMON", "_SEE_COMMON\n!"), L"T96 T3 in.fru",
         "CFru::SetParseAreaErrorMessage - Unexpected Character\r\n"},
        {"quotes past 512", quoted, L"T95 T7 in.fru", "CFru::ParseArea - Area Too Big\r\n"},
        {"hex past 512", FruText(large), L"T95 T7 in.fru", "CFru::SetParseAreaErrorMessage - Area Too Big\r\n"},
        {"chassis", FruText(badChassis), L"T97 T4 in.fru", "CFru::ReadFRUFromFile - Area Parse Error\r\n"},
        {"board", FruText(badBoard), L"T97 T5 in.fru", "CFru::ReadFRUFromFile - Area Parse Error\r\n"},
        {"product", FruText(badProduct), L"T97 T6 in.fru", "CFru::ReadFRUFromFile - Area Parse Error\r\n"},
        {"areas out of order", Replaced(Replaced(good, "_SEE_BOARD", "_SEE_X"), "_SEE_CHASSIS", "_SEE_BOARD"),
         L"T98 in.fru", "CFru::ReadFRUFromFile - File Read Error\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove("DBGLOG.txt");
        EXPECT_EQ(Load(row.text), FRU_STATUS_FILE_READ_ERROR);
        EXPECT_EQ(LastError(), row.message);
        EXPECT_THAT(ReadFile("DBGLOG.txt"), testing::HasSubstr(row.log));
    }
    EXPECT_EQ(m_table->SelectList(m_table, FRU_LIST_FILE), FRU_STATUS_NOT_LOADED) << "nothing was added";
}

TEST_F(CReaderTest, EveryLineButTwoMustBeThere) {
    const std::string good = FruText(RichFru());
    std::size_t optional = 0;
    for (std::size_t start = 0; start < good.size(); start = good.find('\n', start) + 1) {
        if (good[start] != '_')
            continue;
        const std::string key = good.substr(start, good.find_first_of("\t\n (", start) - start);
        const std::string without = good.substr(0, start) + "x" + good.substr(good.find('\n', start));
        // Bytes without their tag belong to the block before, which then is no area any more.
        const bool isBlock = key == "_SEE_CHASSIS" || key == "_SEE_BOARD" || key == "_SEE_PRODUCT" ||
                             key == "_SEE_MULTIREC" || key == "_SEE_INTERNAL";
        if (key == "_FRU_TITLE" || key == "_NVS_TYPE") {
            EXPECT_EQ(Load(without), 0U) << key;
            ++optional;
        } else {
            EXPECT_EQ(Load(without), FRU_STATUS_FILE_READ_ERROR) << key;
            EXPECT_EQ(LastError().substr(0, 3), isBlock ? L"T96" : L"T98") << key;
        }
    }
    EXPECT_EQ(optional, 2U);
    ASSERT_EQ(Load(WithLine(good, "_FRU_TITLE", "")), 0U);
    const wchar_t* name = L"unset";
    EXPECT_EQ(m_table->GetFruName(m_table, name), 0U);
    EXPECT_EQ(name, nullptr);
}

TEST_F(CReaderTest, SpellingsOfTheSameFru) {
    const std::string good = FruText(RichFru());
    std::string spaced, split;
    for (const UINT8 byte : RichFru().board) {
        spaced += Hex({byte}).insert(1, " # \t") + "  ";
        split += Hex({byte}) + "\n\n";
    }
    const std::string board = Hex(RichFru().board), maker = Hex(Bytes("BMaker"));
    const std::pair<const char*, std::string> rows[] = {
        {"CR", Replaced(good, "\n", "\r")},
        {"CR LF", Replaced(good, "\n", "\r\n")},
        {"LF CR", Replaced(good, "\n", "\n\r")},
        {"no last line end", good.substr(0, good.size() - 1)},
        {"no closing parenthesis", good.substr(0, good.size() - 2)},
        {"indented, with comments", Replaced(good, "\n", " \t// note 'x' )\n\n \t")},
        {"split hexadecimal line", Replaced(good, board, spaced)},
        {"a byte a line", Replaced(good, board, split)},
        {"lower case", Replaced(good, board, Replaced(board, "C", "c"))},
        {"quoted text", Replaced(good, maker, "\nignored 'BMaker' zz ignored too '\n")},
        {"empty quotes", Replaced(good, maker, maker + "\n''\n")},
        {"a parenthesis ends nothing early", Replaced(good, "_SEE_BOARD", ") )\n(\n_SEE_BOARD")},
        {"_FRU alone", Replaced(good, "_FRU (", "_FRU\n_FRU_TITLE 'early'\nand _FRU here(")},
        {"key in the line", Replaced(good, "_START_ADDR", "here: _START_ADDR")},
        {"value right behind the key", Replaced(good, "_DEV_ID\t\t05", "_DEV_ID5 junk")},
        {"first lines skipped", "junk\n_LF_VERSION 'no'\n" + good},
    };
    ASSERT_EQ(Load(good), 0U);
    const std::string expected = Saved();
    for (const auto& [name, text] : rows) {
        EXPECT_EQ(Load(text), 0U) << name << "\n" << text;
        EXPECT_EQ(Saved(), expected) << name;
    }
}

TEST_F(CReaderTest, QuotedTextsHideWhatWouldEndABlock) {
    FRU_BYTES fru;
    fru.internalUse = Fill(4, 0xEE);
    ASSERT_EQ(Load(Replaced(FruText(fru), Hex(fru.internalUse), "'a)b_SEE_' ')'")), 0U);
    m_table->SelectAreaEnum(m_table, FRU_AREA_INTERNAL_USE);
    EXPECT_EQ(Value(0), L"61 29 62 5F 53 45 45 5F");
}

TEST_F(CReaderTest, AddressesAndTypes) {
    const struct {
        const char* key;
        const char* line;
        int expected[8]; // type, lun, address, bus, controller, id, mBMC sizes
    } rows[] = {
        {"_DEV_ID", "_DEV_ID ff", {2, 1, 0x3C, 0xFF, 0x20, 0xFF, 0xFF, 0}},
        {"_DEV_ID", "_DEV_ID 0x7", {2, 1, 0x3C, 0xFF, 0x20, 7, 0xFF, 0}},
        {"_DEV_ADDRESS", "_DEV_ADDRESS a0", {2, 1, 0xA0, 0xFF, 0x20, 5, 0xFF, 0}},
        {"_DEV_BUS", "_DEV_BUS 3", {2, 1, 0x3C, 3, 0x20, 5, 0xFF, 0}},
        {"_DEV_CNTR", "_DEV_CNTR 2C", {2, 1, 0x3C, 0xFF, 0x2C, 5, 0xFF, 0}},
        {"_NVS_LUN", "_NVS_LUN 2", {2, 2, 0x3C, 0xFF, 0x20, 5, 0xFF, 0}},
        {"_NVS_TYPE", "_NVS_TYPE 'AT24CO2'", {0, 1, 0x3C, 0xFF, 0x20, 5, 0xFF, 0}},
        {"_NVS_TYPE", "_NVS_TYPE 'DS1624S'", {1, 1, 0x3C, 0xFF, 0x20, 5, 0xFF, 0}},
        {"_NVS_TYPE", "", {2, 1, 0x3C, 0xFF, 0x20, 5, 0xFF, 0}},
        {"_DATA_LEN", "_DATA_LEN FFFF", {2, 1, 0x3C, 0xFF, 0x20, 5, 0xFF, 0}},
    };
    const auto check = [this](const int(&expected)[8], const char* line) {
        FRU_TYPE type = FRU_TYPE_NONE;
        UINT8 bytes[6] = {};
        UINT16 size = 7;
        EXPECT_EQ(
            m_table->GetFruAddress(m_table, type, bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5], size),
            0U);
        EXPECT_THAT((std::vector<int>{type, bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5], size}),
                    testing::ElementsAreArray(expected))
            << line;
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Load(WithLine(FruText(BoardFru()), row.key, row.line)), 0U) << row.line;
        check(row.expected, row.line);
    }
    StartOnMbmcPlatform();
    EXPECT_EQ(Load(MbmcText("9C", "1AB")), 0U);
    check({3, 0, 0x3C, 0xFF, 0x20, 0, 0xAB, 0x9C}, "mBMC");
}

TEST_F(CReaderTest, RefusedMbmcSizes) {
    StartOnMbmcPlatform();
    const std::tuple<const char*, const char*, const wchar_t*> rows[] = {
        {"x", "1", L"T90 T81 in.fru"}, {"100", "1", L"T90 T82 in.fru"}, {"1", "x", L"T90 T81 in.fru"}};
    for (const auto& [address, data, message] : rows) {
        std::filesystem::remove("DBGLOG.txt");
        EXPECT_EQ(Load(MbmcText(address, data)), FRU_STATUS_FILE_READ_ERROR);
        EXPECT_EQ(LastError(), message);
        EXPECT_THAT(ReadFile("DBGLOG.txt"), testing::Not(testing::HasSubstr(BAD_VALUE)));
    }
}

TEST_F(CReaderTest, AHeaderWithoutAreasEndsTheFile) {
    ASSERT_EQ(Load(FruText({}) + "_SEE_BOARD\nnonsense"), 0U);
    unsigned int count = 7;
    EXPECT_EQ(m_table->GetNumberOfAreas(m_table, count), 0U);
    EXPECT_EQ(count, 0U);
}

TEST_F(CReaderTest, AnAreaHoldsUpTo511Bytes) {
    FRU_BYTES fru;
    fru.internalUse = Fill(511, 0xA5);
    ASSERT_EQ(Load(FruText(fru)), 0U);
    unsigned int size = 0;
    m_table->SelectAreaEnum(m_table, FRU_AREA_INTERNAL_USE);
    EXPECT_EQ(m_table->GetAreaSize(m_table, size), 0U);
    EXPECT_EQ(size, 511U);
    EXPECT_EQ(Value(0).size(), 511U * 3 - 1);
    fru.internalUse.push_back(0);
    EXPECT_DEATH(Load(FruText(fru)), "assertion failed: index != 512\n");
    const std::string filled = Hex(Fill(500, 1)) + "\n'1234567890ab'";
    EXPECT_DEATH(Load(Replaced(FruText(fru), Hex(fru.internalUse), filled)), "assertion failed: index != 512\n");
}

TEST_F(CReaderTest, MisuseEndsTheProcess) {
    const std::string good = FruText(RichFru());
    FRU_BYTES shortChain = RichFru();
    shortChain.multiRecord.resize(4);
    FRU_BYTES wrongSum = RichFru();
    wrongSum.board = FullArea(BYTES{1, 0, 0, 0, 0, 0} + Fill(5, 0xC0), 16);
    ++wrongSum.board.back();
    const std::pair<std::string, const char*> rows[] = {
        {WithLine(good, "_LF_NAME", "_LF_NAME name"), ""},
        {WithLine(good, "_LF_VERSION", "_LF_VERSION '1.0"), ""},
        {WithLine(good, "_LF_FMT_VER", "_LF_FMT_VER"), ""},
        {WithLine(good, "_IPMI_VERSION", "_IPMI_VERSION \"1.0\""), ""},
        {WithLine(good, "_SEE_COMMON", "_SEE_COMMON\n00"), "length == 8"},
        {FruText(shortChain), "length >= 5"},
        {WithLine(good, "01Ab", "01 0\n'text'"), "position == FIRST"},
        {WithLine(good, "01Ab", "01 0\n1"), "position == FIRST"},
        {FruText(wrongSum), "IsValid\\(\\)"},
    };
    for (const auto& [text, condition] : rows)
        EXPECT_DEATH(Load(text), std::string("frudata: [a-z]+.cpp: assertion failed: ") + condition) << text;
}

} // namespace
} // namespace Frudata_Tests
