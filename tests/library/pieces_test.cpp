// Inner pieces with rules that the table cannot reach.
#include "support.h"

#include "common/lasterror.h"
#include "common/libfile.h"
#include "frudata/image/fru.h"
#include "frudata/orderedlist.h"

namespace Frudata_Tests {
namespace {

using namespace Frudata_Private;

class CPiecesTest : public CLibraryTest {};

TEST_F(CPiecesTest, FilesAreCutIntoLines) {
    const std::pair<std::string, std::vector<std::string>> rows[] = {{"a\r\nb", {"a", "b"}},
                                                                     {"a\n\rb\n", {"a", "b"}},
                                                                     {"a\n\nb", {"a", "", "b"}},
                                                                     {"a\r\rb", {"a", "", "b"}},
                                                                     {"\n", {""}},
                                                                     {"\r\n\r\n", {"", ""}},
                                                                     {"a", {"a"}},
                                                                     {"a\r\n\n", {"a", ""}},
                                                                     {"a\n\r\nb", {"a", "", "b"}}};
    for (const auto& [content, lines] : rows) {
        WriteFile("lines", content);
        CFile file("lines");
        ASSERT_TRUE(file.IsOpen());
        std::vector<std::string> found;
        for (UINT32 line = 0; line < file.LineCount(); ++line) {
            found.push_back(file.GetLine(line));
            EXPECT_EQ(file.GetLineLength(line), found.back().size());
        }
        EXPECT_EQ(found, lines) << testing::PrintToString(content);
    }
    WriteFile("empty", "");
    CFile file;
    EXPECT_FALSE(file.Open("empty"));
    EXPECT_FALSE(file.Open("gone"));
    EXPECT_FALSE(file.Open("."));
    EXPECT_DEATH(file.LineCount(), "libfile.cpp: assertion failed: m_Cache\n");
    EXPECT_DEATH(file.GetLine(0), "libfile.cpp: assertion failed: ");
    ASSERT_TRUE(file.Open("lines"));
    EXPECT_ASSERTION(file.GetLine(file.LineCount()), "libfile", "ptr");
    EXPECT_ASSERTION(file.StripRightFromSequence(nullptr, 0), "libfile", "sequence");
}

TEST_F(CPiecesTest, LinesAreEdited) {
    struct {
        const char* line;
        void (*edit)(CFile& file);
        const char* result;
    } const rows[] = {
        {" \t a b\t ", [](CFile& file) { file.Strip(); }, "a b"},
        {" \t a b\t ", [](CFile& file) { file.StripLeft(1); }, "a b\t "},
        {" \t a b\t ", [](CFile& file) { file.StripRight(1); }, " \t a b"},
        {" \t ", [](CFile& file) { file.StripLeft(); }, ""},
        {" \t ", [](CFile& file) { file.StripRight(); }, ""},
        {"\t0 1\t 2 ", [](CFile& file) { file.SquishLine(1); }, "012"},
        {"01 02 // note // x", [](CFile& file) { file.StripRightFromSequence("//"); }, "01 02 "},
        {"//", [](CFile& file) { file.StripRightFromSequence("//", 1); }, ""},
        {"a / b", [](CFile& file) { file.StripRightFromSequence("//"); }, "a / b"},
    };
    for (const auto& row : rows)
        for (const char* end : {"", "\n", "\r\nnext"}) {
            WriteFile("lines", std::string("first\n") + row.line + end);
            CFile file("lines");
            row.edit(file);
            EXPECT_STREQ(file.GetLine(1), row.result);
            EXPECT_EQ(file.GetLineLength(1), std::string(row.result).size());
            EXPECT_STREQ(file.GetLine(0), "first");
            EXPECT_STREQ(file.GetLine(file.LineCount() - 1), *end == '\r' ? "next" : row.result);
        }
    const std::pair<const char*, const char*> quoted[] = {
        {"x 'abc' y", "abc"}, {"x 'abc", nullptr}, {"x ''", ""}, {"none", nullptr}, {"'a' 'b'", "a"}};
    for (const auto& [line, text] : quoted) {
        WriteFile("lines", std::string(line) + "\n'next'");
        CFile file("lines");
        EXPECT_STREQ(file.GetDelimitedString(0, '\''), text);
        EXPECT_STREQ(file.GetDelimitedString(1, '\''), "next");
        EXPECT_EQ(file.GetDelimitedString(0, 0), nullptr);
        EXPECT_EQ(file.GetDelimitedString(2, '\''), nullptr);
        EXPECT_TRUE(file.LineContains(1, "ex") && !file.LineContains(1, "EX"));
    }
}

TEST_F(CPiecesTest, ListsKeepTheirOrder) {
    int a, b, c;
    OrderedList<int*> list;
    EXPECT_TRUE(!list.First() && list.Count() == 0 && !list[0] && !list.Remove(&a) && !list.Add(nullptr));
    for (int* element : {&a, &b, &c})
        EXPECT_EQ(list.Add(element), element);
    EXPECT_TRUE(list[0] == &a && list[1] == &b && list[2] == &c && !list[3]);
    EXPECT_TRUE(list.Next(&a) == &b && !list.Next(&c) && !list.Next(nullptr));
    EXPECT_EQ(list.Remove(&b), &b);
    EXPECT_EQ(list.Remove(&b), nullptr);
    EXPECT_TRUE(list.Count() == 2 && list[1] == &c);
    EXPECT_EQ(list.Add(&a), &a);
    EXPECT_TRUE(list.Next(&a) == &c && list[2] == &a && list.Count() == 3);
    EXPECT_EQ(list.Remove(&a), &a);
    EXPECT_TRUE(list.First() == &c && list[1] == &a);
    list.Remove(&c);
    list.Remove(&a);
    EXPECT_TRUE(!list.First() && list.Count() == 0);
    EXPECT_TRUE(list.Add(&b) && list.First() == &b);
}

std::string TextTable(std::vector<UINT32> words, const std::u16string& units, int sum = 0) {
    std::string content(reinterpret_cast<const char*>(words.data()), words.size() * 4);
    content.append(reinterpret_cast<const char*>(units.data()), units.size() * 2);
    for (std::size_t i = 0; i + 1 < content.size(); i += 2)
        sum -= static_cast<UINT8>(content[i]) | static_cast<UINT8>(content[i + 1]) << 8;
    content += static_cast<char>(sum);
    return content + static_cast<char>(sum >> 8);
}

TEST_F(CPiecesTest, TextTablesAreChecked) {
    const std::u16string ab = {u'A', 0, u'B', 0};
    const std::string good = TextTable({2, 20, 24, 2, 2}, ab);
    const struct {
        const char* name;
        std::string content;
        UINT32 expected, result;
    } rows[] = {
        {"good", good, 0, 0},
        {"good, counted", good, 2, 0},
        {"other count", good, 3, 11},
        {"sum is 1", TextTable({2, 20, 24, 2, 2}, ab, 1), 0, 6},
        {"no texts", TextTable({0, 4}, u""), 0, 7},
        {"odd offset", TextTable({2, 20, 25, 2, 2}, ab), 0, 8},
        {"first offset", TextTable({2, 22, 24, 2, 2}, ab), 0, 8},
        {"gap", TextTable({2, 20, 26, 2, 2}, {u'A', 0, u'x', u'B', 0}), 0, 0},
        {"empty", "", 0, 5},
        {"short", good.substr(0, 2) + std::string("\0\0", 2), 0, 6},
        {"count past the end", TextTable({0x20000000, 4}, u""), 0, 5},
        {"offset past the end", TextTable({2, 20, 2000, 2, 2}, ab), 0, 5},
        {"length past the end", TextTable({2, 20, 24, 2, 0x7FFFFFFF}, ab), 0, 5},
    };
    for (const auto& row : rows) {
        WriteFile("table", row.content);
        CStringResource texts;
        EXPECT_EQ(texts.Initialize(L"table", row.expected), row.result) << row.name;
        if (row.result != 0) {
            EXPECT_EQ(texts.GetString(0), nullptr);
            EXPECT_EQ(texts.CacheAll(), 10U);
            EXPECT_EQ(texts.ReleaseAll(), 10U);
            continue;
        }
        EXPECT_STREQ(texts.GetString(1), L"B") << row.name;
        EXPECT_EQ(texts.ReleaseString(1), 0U);
        EXPECT_EQ(texts.CacheAll(), 0U);
        const WCHAR* text = texts.GetString(1);
        EXPECT_STREQ(text, L"B") << row.name;
        EXPECT_EQ(texts.ReleaseString(1), 0U);
        EXPECT_EQ(texts.GetString(1), text) << "cached texts stay";
        EXPECT_EQ(texts.GetString(2), nullptr);
        EXPECT_EQ(texts.ReleaseString(2), 9U);
        EXPECT_EQ(texts.ReleaseAll(), 0U);
        EXPECT_STREQ(texts.GetString(0), L"A");
        EXPECT_EQ(texts.Initialize(nullptr, 0), 1U);
        EXPECT_EQ(texts.GetString(0), nullptr) << "an earlier load is released first";
    }
    CStringResource texts;
    EXPECT_EQ(texts.Initialize(L"gone", 0), 4U);
    EXPECT_EQ(texts.Initialize(L"en", L"us", nullptr, 0), 1U);
    EXPECT_EQ(texts.Initialize(L"en", L"us", L"frudata/str/frudata.str", 139), 0U);
}

TEST_F(CPiecesTest, TextsWithOtherPlaceholdersThanTheirArgumentsAreNotUsed) {
    const std::tuple<const wchar_t*, const char*, bool> rows[] = {
        {L"plain", "", true},   {L"100%%", "", true},  {L"%ls: %s", "ws", true}, {L"%02u/%u", "uu", true},
        {L"%s", "", false},     {L"%ls", "s", false},  {L"%s", "w", false},      {L"%n", "u", false},
        {L"%u", "uu", false},   {L"%1$u", "u", false}, {L"%*u", "u", false},     {L"%999u", "u", false},
        {L"%hhu", "u", false},  {L"%lu", "u", false},  {L"%", "", false},        {L"%l", "w", false},
        {L"%u %u", "u", false}, {L"%S", "w", false},   {L"%.5s", "s", false},    {L"%X %i", "uu", true}};
    for (const auto& [text, arguments, matches] : rows)
        EXPECT_EQ(PlaceholdersMatch(text, arguments), matches) << testing::PrintToString(std::wstring(text));
    SetLastError(nullptr);
    EXPECT_EQ(LastError(), L"");
}

TEST_F(CPiecesTest, HeadersAndLengths) {
    EXPECT_EQ(DecodeLength(0xC1), 1);
    EXPECT_EQ(DecodeLength(0xFF), 63);
    const UINT8 bytes[] = {1, 0, 0, 1, 0, 0, 0, 0xFE};
    EXPECT_EQ(CFru::CalculateChecksum(bytes, 7), 0xFE);
    EXPECT_EQ(CFru::CalculateChecksum(bytes, 8), 0);
    EXPECT_EQ(CFru::CalculateChecksum(bytes, -1), 0);

    CFru fru;
    const UINT8 header[] = {1, 1, 2, 4, 9, 0, 0, 0};
    EXPECT_EQ(fru.DecodeHeader(header), 0U);
    EXPECT_FALSE(fru.GetFRUHeader().IsValid());
    const_cast<UINT8*>(fru.GetFRUHeader().GetData())[1] = 0;
    EXPECT_TRUE(fru.HasInternalArea()) << "the copy is no way into the header";
    EXPECT_EQ(fru.ComputeAreaLengths(256), 0U);
    EXPECT_EQ(fru.GetMultiRecAreaLength(), 0);
    EXPECT_EQ(fru.GetProductInfoArea().GetLength(), 184U);
    EXPECT_EQ(fru.GetBoardInfoArea().GetLength(), 40U);
    EXPECT_EQ(fru.GetChassisInfoArea().GetLength(), 16U);
    EXPECT_EQ(fru.GetOverallLength(), 184 + 40 + 16 + 8);
    const UINT8 withRecords[] = {1, 0, 1, 0, 4, 10, 0, 0};
    fru.DecodeHeader(withRecords);
    fru.ComputeAreaLengths(100);
    EXPECT_EQ(fru.GetMultiRecAreaLength(), 20);
    EXPECT_EQ(fru.GetProductInfoArea().GetLength(), 48U);
    EXPECT_EQ(fru.GetBoardInfoArea().GetLength(), 0U);
    EXPECT_EQ(fru.GetChassisInfoArea().GetLength(), 24U);
    EXPECT_DEATH(fru.SerializeCommonHeader(nullptr), "fru.cpp: assertion failed: ");
    EXPECT_DEATH(fru.LoadFromFile(nullptr), "fru.cpp: assertion failed: ");
    EXPECT_DEATH(fru.ReadFRUFromFile(nullptr), "frureadfile.cpp: assertion failed: ");
}

TEST_F(CPiecesTest, RecordChecksums) {
    const BYTES chain = RichFru().multiRecord;
    for (std::size_t damaged = 0; damaged <= chain.size(); ++damaged) {
        BYTES bytes = chain;
        if (damaged < bytes.size())
            bytes[damaged] ^= 0x40;
        CFru fru;
        EXPECT_TRUE(fru.CheckMultiRecCheckSum()) << "no records";
        EXPECT_EQ(fru.SetMultiRecArea(bytes.data(), static_cast<UINTN>(bytes.size()), false), 0U);
        EXPECT_EQ(fru.CheckMultiRecCheckSum(), damaged == chain.size()) << damaged;
    }
}

TEST_F(CPiecesTest, BlocksWithoutTheirTag) {
    WriteFile("block", "_SEE_BOARD\n01 02\n_SEE_PRODUCT");
    CFile file("block");
    UINT8* data = nullptr;
    UINTN length = 0;
    EXPECT_EQ(CFru::ParseArea("_SEE_CHASSIS", file, 0, data, length), FRU_STATUS_MISSING_AREA_TAG);
    EXPECT_EQ(CFru::ParseArea("_SEE_BOARD", file, 0, data, length), 0U);
    EXPECT_EQ(BYTES(data, data + length), (BYTES{1, 2}));
    EXPECT_EQ(CFru::ParseArea("_SEE_PRODUCT", file, 2, data, length), 0U);
    EXPECT_EQ(length, 0U);
    const std::pair<EFI_STATUS, const wchar_t*> rows[] = {{FRU_STATUS_MISSING_AREA_TAG, L"T94 area file"},
                                                          {FRU_STATUS_AREA_TOO_BIG, L"T95 area file"},
                                                          {FRU_STATUS_UNEXPECTED_CHARACTER, L"T96 area file"},
                                                          {1, L"T97 area file"}};
    for (const auto& [status, message] : rows) {
        CFru::SetParseAreaErrorMessage(status, L"area", "file");
        EXPECT_EQ(LastError(), message);
    }
    EXPECT_DEATH(CFru::SetParseAreaErrorMessage(0, L"area", "file"), "frureadfile.cpp: assertion failed: ");
}

TEST_F(CPiecesTest, FrusAreShownByNameOrAddress) {
    FRU_LOCATOR locator(1, 2, 3, 4, 5, 6, 7, FRU_TYPE_AT24CO2);
    WCHAR buffer[30] = L"untouched";
    const int bytes = sizeof buffer;
    EXPECT_STREQ(CFru::GetFriendlyFruIdentifier(&locator, buffer, 99), L"");
    EXPECT_STREQ(CFru::GetFriendlyFruIdentifier(nullptr, buffer, bytes), L"");
    EXPECT_STREQ(CFru::GetFriendlyFruIdentifier(&locator, nullptr, bytes), L"");
    EXPECT_STREQ(buffer, L"untouched");
    EXPECT_STREQ(CFru::GetFriendlyFruIdentifier(&locator, buffer, bytes), L"T134 5 6 1 4");
    EXPECT_EQ(locator.SetName(L"name"), 0U);
    EXPECT_EQ(CFru::GetFriendlyFruIdentifier(&locator, buffer, bytes), buffer);
    EXPECT_STREQ(buffer, L"name");
    EXPECT_EQ(locator.SetName("0123456789012345678901234567890123456789"), 0U);
    EXPECT_STREQ(CFru::GetFriendlyFruIdentifier(&locator, buffer, bytes), L"01234567890123456789012345678");
    EXPECT_EQ(locator.SetName(static_cast<const char*>(nullptr)), 1U);
    EXPECT_EQ(locator.SetName(static_cast<const WCHAR*>(nullptr)), 1U);
    EXPECT_STREQ(locator.name, L"0123456789012345678901234567890123456789");
}

TEST_F(CPiecesTest, TheInternalUseAreaKeepsItsMark) {
    CInternalUseArea area;
    const UINT8 bytes[513] = {0x0F};
    EXPECT_EQ(area.GetNumberOfFields(), 0U);
    EXPECT_TRUE(area.SetData(bytes, 512, true));
    EXPECT_TRUE(area.SetData(bytes, 1, false));
    EXPECT_TRUE(area.IsModified());
    area.ResetIsModified();
    EXPECT_FALSE(area.IsModified());
    EXPECT_STREQ(area.GetFieldValueFromIndex(0), L"0F");
    EXPECT_ASSERTION(area.SetData(bytes, 513, true), "internalusearea", "0");
    EXPECT_ASSERTION(area.GetFieldTitleFromIndex(1), "internalusearea", "0");
    EXPECT_ASSERTION(area.GetFieldValueFromIndex(1), "internalusearea", "m_pValue");
}

} // namespace
} // namespace Frudata_Tests
