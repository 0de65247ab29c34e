// The FRU text file reader: what it takes, what it refuses and what it says then.
#include "support.h"

namespace Frudata_Tests {
namespace {

using CReaderTest = CLibraryTest;

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

TEST_F(CReaderTest, RefusedLines) {
    const std::tuple<const char*, int, std::vector<const char*>> rows[] = {
        {"_FRU_TITLE", 71, {"_FRU_TITLE Title", "_FRU_TITLE 'a//b'"}},
        {"_DATA_LEN", 76, {"_DATA_LEN 10000", "_DATA_LEN -1", "_DATA_LEN len", "x _DATA_LEN 10"}},
        {"_NVS_TYPE", 77, {"_NVS_TYPE IMBDEVICE", "_NVS_TYPE 'AT24C02'", "_NVS_TYPE 'MBMC_FRU'"}},
        {"_DEV_ID", 78, {"_DEV_ID 100", "_DEV_ID g"}},
        {"_DEV_CNTR", 79, {"_DEV_CNTR 100", "_DEV_CNTR"}},
        {"_NVS_LUN", 80, {"_NVS_LUN 100", "a _NVS_LUN 1"}},
        {"_DEV_BUS", 81, {"_DEV_BUS 100", "_DEV_BUS '1'"}},
        {"_DEV_ADDRESS", 82, {"_DEV_ADDRESS FFFFFFFF", "_DEV_ADDRESS ?"}},
    };
    for (const auto& [key, text, lines] : rows)
        for (const char* line : lines) {
            TakeLog();
            EXPECT_EQ(Load(WithLine(FruText(RichFru()), key, line)), FRU_STATUS_FILE_READ_ERROR) << line;
            EXPECT_EQ(LastError(), L"T90 T" + std::to_wstring(text) + L" in.fru") << line;
            EXPECT_THAT(TakeLog(), testing::HasSubstr("Unexpected Error while reading file\r\n")) << line;
        }
}

TEST_F(CReaderTest, RefusedFiles) {
    const std::string good = FruText(RichFru());
    FRU_BYTES badChassis = RichFru(), badBoard = RichFru(), badProduct = RichFru();
    badChassis.chassis[1] = badBoard.board[1] = badProduct.product[1] = 1;
    const std::string quoted = WithLine(good, "01Ab", Hex(BYTES(500, 1)) + "\n'1234567890abc'");
    const std::string badArea = "CFru::ReadFRUFromFile - Area Parse Error\r\n";
    const std::tuple<std::string, const wchar_t*, std::string> rows[] = {
        {"", L"T89 in.fru", "CFru::ReadFRUFromFile - Unexpected\r\n"},
        {"// a\n\n  // b", L"T98 in.fru", "CFru::ReadFRUFromFile - Unexpected EOF\r\n"},
        {WithLine(good, "01Ab", "01 0G"), L"T96 T7 in.fru", "CFru::ParseArea - Unexpected Character\r\n"},
        {WithLine(good, "_SEE_COMMON", "_SEE_COMMON\n!"), L"T96 T3 in.fru",
         "CFru::SetParseAreaErrorMessage - Unexpected Character\r\n"},
        {quoted, L"T95 T7 in.fru", "CFru::ParseArea - Area Too Big\r\n"},
        {FruText({.internalUse = BYTES(513, 1)}), L"T95 T7 in.fru",
         "CFru::SetParseAreaErrorMessage - Area Too Big\r\n"},
        {FruText(badChassis), L"T97 T4 in.fru", badArea},
        {FruText(badBoard), L"T97 T5 in.fru", badArea},
        {FruText(badProduct), L"T97 T6 in.fru", badArea},
        {Replaced(Replaced(good, "_SEE_BOARD", "_SEE_X"), "_SEE_CHASSIS", "_SEE_BOARD"), L"T98 in.fru",
         "CFru::ReadFRUFromFile - File Read Error\r\n"},
    };
    for (const auto& [text, message, log] : rows) {
        SCOPED_TRACE(text);
        TakeLog();
        EXPECT_EQ(Load(text), FRU_STATUS_FILE_READ_ERROR);
        EXPECT_EQ(LastError(), message);
        EXPECT_THAT(TakeLog(), testing::HasSubstr(log));
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
        const bool isBlock = key.substr(0, 4) == "_SEE" && key != "_SEE_COMMON";
        const bool isOptional = key == "_FRU_TITLE" || key == "_NVS_TYPE";
        EXPECT_EQ(Load(without), isOptional ? 0U : FRU_STATUS_FILE_READ_ERROR) << key;
        EXPECT_EQ(LastError().substr(0, 3), isOptional ? L"" : isBlock ? L"T96" : L"T98") << key;
        optional += isOptional;
    }
    EXPECT_EQ(optional, 2U);
    ASSERT_EQ(Load(WithLine(good, "_FRU_TITLE", "")), 0U);
    EXPECT_EQ(Told(m_table->GetFruName), nullptr);
}

TEST_F(CReaderTest, SpellingsOfTheSameFru) {
    const std::string good = FruText(RichFru());
    std::string spaced, split;
    for (const UINT8 byte : RichFru().board) {
        spaced += Hex({byte}).insert(1, " # \t") + "  ";
        split += Hex({byte}) + "\n\n";
    }
    const std::string board = Hex(RichFru().board), maker = Hex(Field("BMaker")).substr(2);
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

TEST_F(CReaderTest, AddressesAndTypes) {
    const auto address = [this] { // type, lun, address, bus, controller, id, mBMC sizes
        FRU_TYPE type = FRU_TYPE_NONE;
        UINT8 b[6] = {};
        UINT16 size = 7;
        EXPECT_EQ(m_table->GetFruAddress(m_table, type, b[0], b[1], b[2], b[3], b[4], b[5], size), 0U);
        return std::vector<int>{type, b[0], b[1], b[2], b[3], b[4], b[5], size};
    };
    const std::tuple<const char*, std::size_t, std::vector<std::pair<const char*, int>>> rows[] = {
        {"_NVS_TYPE", 0, {{"_NVS_TYPE 'AT24CO2'", 0}, {"_NVS_TYPE 'DS1624S'", 1}, {"", 2}}},
        {"_DEV_ID", 5, {{"_DEV_ID ff", 0xFF}, {"_DEV_ID 0x7", 7}}},
        {"_NVS_LUN", 1, {{"_NVS_LUN 2", 2}}},
        {"_DEV_ADDRESS", 2, {{"_DEV_ADDRESS a0", 0xA0}}},
        {"_DEV_BUS", 3, {{"_DEV_BUS 3", 3}}},
        {"_DEV_CNTR", 4, {{"_DEV_CNTR 2C", 0x2C}}},
        {"_DATA_LEN", 0, {{"_DATA_LEN FFFF", 2}}},
    };
    for (const auto& [key, index, lines] : rows)
        for (const auto& [line, value] : lines) {
            std::vector<int> expected = {2, 1, 0x3C, 0xFF, 0x20, 5, 0xFF, 0};
            expected[index] = value;
            EXPECT_EQ(Load(WithLine(FruText(BoardFru()), key, line)), 0U) << line;
            EXPECT_EQ(address(), expected) << line;
        }
    Restart(FRU_PLATFORM_MBMC);
    EXPECT_EQ(Load(MbmcText("9C", "1AB")), 0U);
    EXPECT_EQ(address(), (std::vector<int>{3, 0, 0x3C, 0xFF, 0x20, 0, 0xAB, 0x9C}));
    for (const auto& [size, data, message] :
         {std::tuple("x", "1", L"T90 T81 in.fru"), {"100", "1", L"T90 T82 in.fru"}, {"1", "x", L"T90 T81 in.fru"}}) {
        TakeLog();
        EXPECT_EQ(Load(MbmcText(size, data)), FRU_STATUS_FILE_READ_ERROR);
        EXPECT_EQ(LastError(), message);
        EXPECT_THAT(TakeLog(), testing::Not(testing::HasSubstr("Unexpected Error while reading file")));
    }
}

TEST_F(CReaderTest, WhatEndsABlockAndAFile) {
    ASSERT_EQ(Load(FruText({}) + "_SEE_BOARD\nnonsense"), 0U) << "a header without areas ends the file";
    EXPECT_EQ(Told(m_table->GetNumberOfAreas), 0U);
    LoadAndSelect({.internalUse = BYTES(511, 0xA5)}, FRU_AREA_INTERNAL_USE);
    EXPECT_EQ(Told(m_table->GetAreaSize), 511U);
    EXPECT_EQ(Value(0).size(), 511U * 3 - 1);
    const std::string full = FruText({.internalUse = BYTES(512, 0xA5)}), hex = Hex(BYTES(512, 0xA5));
    for (const std::string& text : {full, Replaced(full, hex, Hex(BYTES(500, 1)) + "\n'1234567890ab'")})
        EXPECT_DEATH(Load(text), "assertion failed: index != 512\n");
    ASSERT_EQ(Load(Replaced(full, hex, "'a)b_SEE_' ')'")), 0U) << "quoted, both end nothing";
    m_table->SelectAreaEnum(m_table, FRU_AREA_INTERNAL_USE);
    EXPECT_EQ(Value(0), L"61 29 62 5F 53 45 45 5F");
}

// A megabyte of one character. The rest of the damage is the fuzzers' work.
TEST_F(CReaderTest, LongLinesAreReadOrRefused) {
    for (const char byte : {'\0', '\n', '0', '\'', '#', '\t'})
        for (const std::string start : {"", "_SEE_COMMON\n'", "_SEE_COMMON\n", "_FRU_TITLE '"}) {
            // In a block, digits and quoted text count, of which there is too much.
            const bool counts = byte == '0' || (start.ends_with('\'') && byte != '\'');
            const bool isRead = start.starts_with("_SEE_COMMON") && !counts;
            EXPECT_EQ(Load(WithLine(FruText(BoardFru()), "_SEE_COMMON", start + std::string(1 << 20, byte))),
                      isRead ? 0U : FRU_STATUS_FILE_READ_ERROR)
                << start << int{byte};
        }
}

// Half a gigabyte, of which an array with a number for each byte would be more than a 32-bit process can have.
TEST_F(CReaderTest, AHugeFileIsRefused) {
    if (sizeof(void*) > 4 || FRUDATA_TEST_SANITIZED)
        GTEST_SKIP() << "there is such memory, or there would be minutes of checks";
    WriteFile("in.fru", "_LF_NAME 'huge'\n");
    std::filesystem::resize_file("in.fru", std::uintmax_t{1} << 29);
    EXPECT_EQ(m_table->LoadConfigurationFromFile(m_table, L"in.fru", nullptr), FRU_STATUS_FILE_READ_ERROR);
    EXPECT_EQ(LastError(), L"T98 in.fru");
}

TEST_F(CReaderTest, MisuseEndsTheProcess) {
    const std::string good = FruText(RichFru());
    FRU_BYTES shortChain = RichFru(), wrongSum = RichFru();
    shortChain.multiRecord.resize(4);
    wrongSum.board = FullArea(BYTES{1, 0, 0, 0, 0, 0} + BYTES(5, 0xC0), 16);
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
