// Tables of texts: which ones load, and which of their texts are used.
#include "support.h"

#include "common/allocate.h"
#include "common/lasterror.h"
#include "common/libfile.h"
#include "common/placeholders.h"
#include "frudata/image/fru.h"
#include "frudata/system/fruproperties.h"
#include "frudata/system/sdrrecords.h"

namespace Frudata_Tests {
namespace {

using namespace Frudata_Private;

using CPiecesTest = CLibraryTest;

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
        {"text up to the end", TextTable({2, 20, 24, 2, 3}, ab), 0, 0},
        {"empty", "", 0, 5},
        {"short", good.substr(0, 2) + std::string("\0\0", 2), 0, 6},
        {"count past the end", TextTable({0x20000000, 4}, u""), 0, 5},
        {"count of billions", TextTable({0xFFFFFFFF, 4}, u""), 0, 5},
        {"offset past the end", TextTable({2, 20, 2000, 2, 2}, ab), 0, 5},
        {"length past the end", TextTable({2, 20, 24, 2, 0x7FFFFFFF}, ab), 0, 5},
    };
    CStringResource texts;
    for (const auto& row : rows) { // each is released by the next
        SCOPED_TRACE(row.name);
        WriteFile("table", row.content);
        EXPECT_EQ(texts.Initialize(L"table", row.expected), row.result);
        if (row.result != 0) {
            EXPECT_EQ(texts.GetString(0), nullptr);
            EXPECT_EQ(texts.CacheAll(), 10U);
            EXPECT_EQ(texts.ReleaseAll(), 10U);
            continue;
        }
        EXPECT_STREQ(texts.GetString(1), L"B");
        EXPECT_EQ(texts.ReleaseString(1), 0U);
        EXPECT_EQ(texts.CacheAll(), 0U);
        const WCHAR* text = texts.GetString(1);
        EXPECT_EQ(texts.ReleaseString(1), 0U);
        EXPECT_EQ(texts.GetString(1), text) << "cached texts stay";
        EXPECT_EQ(texts.GetString(2), nullptr);
        EXPECT_EQ(texts.ReleaseString(2), 9U);
        EXPECT_EQ(texts.ReleaseAll(), 0U);
        EXPECT_STREQ(texts.GetString(0), L"A");
    }
    EXPECT_EQ(texts.Initialize(nullptr, 0), 1U);
    EXPECT_EQ(texts.Initialize(L"gone", 0), 4U);
    EXPECT_EQ(texts.Initialize(L"en", L"us", nullptr, 0), 1U);
    EXPECT_EQ(texts.Initialize(L"en", L"us", L"frudata/str/frudata.str", 139), 0U);
}

TEST_F(CPiecesTest, SizesThatNoArrayCanHaveAreRefused) {
    EXPECT_EQ(AllocateArray<UINT32>(3)[2], 0U);
    for (const std::uint64_t count :
         {std::uint64_t{PTRDIFF_MAX} / 4 + 1, std::uint64_t{SIZE_MAX} / 4, std::uint64_t{SIZE_MAX} / 4 + 2, UINT64_MAX})
        EXPECT_EQ(AllocateArray<UINT32>(count), nullptr) << count;
}

TEST_F(CPiecesTest, TextsAreUsedWhereTheyTakeWhatTheirCallersGive) {
    constexpr bool HAS_SHORT_LONG = sizeof(long) == 4;
    const struct {
        const wchar_t* text;
        const char* arguments;
        bool fits, matches; // what the library takes, and what the compiler of the texts does
    } rows[] = {
        {L"plain", "", true, true},       {L"100%%", "", true, true},       {L"%ls: %s", "ws", true, true},
        {L"%02u/%u", "uu", true, true},   {L"%X %i", "uu", true, true},     {L"%2$s %1$ls", "ws", true, true},
        {L"plain", "ws", true, false},    {L"%u", "uu", true, false},       {L"%1$u", "uu", true, false},
        {L"%1$u %1$x", "u", true, false}, {L"%S", "w", true, false},        {L"%hs", "s", true, false},
        {L"%.5s", "s", true, false},      {L"%#x", "u", true, false},       {L"%hu %o", "uu", true, false},
        {L"%hhu", "u", true, false},      {L"%.s", "s", true, false},       {L"%lu", "u", HAS_SHORT_LONG, false},
        {L"%s", "", false, false},        {L"%ls", "s", false, false},      {L"%s", "w", false, false},
        {L"%n", "u", false, false},       {L"%*u", "u", false, false},      {L"%999u", "u", false, false},
        {L"%.999s", "s", false, false},   {L"%.*s", "s", false, false},     {L"%", "", false, false},
        {L"%l", "w", false, false},       {L"%u %u", "u", false, false},    {L"%2$u", "uu", false, false},
        {L"%3$u", "uu", false, false},    {L"%1$u %u", "uu", false, false}, {L"%u %1$u", "uu", false, false},
        {L"%0$u", "u", false, false},     {L"%llu", "u", false, false},     {L"%hhs", "s", false, false},
        {L"%c", "u", false, false},       {L"%p", "s", false, false},       {L"%10$u", "u", false, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(PlaceholdersFit(row.text, row.arguments), row.fits) << testing::PrintToString(std::wstring(row.text));
        EXPECT_EQ(PlaceholdersMatch(row.text, row.arguments), row.matches)
            << testing::PrintToString(std::wstring(row.text));
    }
}

TEST_F(CPiecesTest, AnIdentifierIsCutAtTheEndOfItsBuffer) {
    WriteTexts("xx", L"T", {{134, L"a FRU that is named at length: %u %u %u %u"}});
    ASSERT_EQ(m_table->SetLanguageLocale(m_table, L"x", L"x"), 0U);
    const FRU_LOCATOR nameless, named(1, 2, 3, 4, 5, 6, 7, FRU_TYPE_AT24CO2, L"a name of more than 24 characters");
    WCHAR buffer[26];
    for (const auto& [locator, size, text] : {std::tuple(&nameless, 100, L"a FRU that is named at l"),
                                              {&named, 103, L"a name of more than 24 c"},
                                              {&named, 99, L""},
                                              {static_cast<const FRU_LOCATOR*>(nullptr), 100, L""}}) {
        std::wmemset(buffer, L'#', std::size(buffer));
        EXPECT_STREQ(CFru::GetFriendlyFruIdentifier(locator, buffer, size), text);
        EXPECT_EQ(buffer[0] == L'#', *text == 0);
        EXPECT_EQ(buffer[25], L'#');
    }
}

TEST_F(CPiecesTest, ARecordIsValidWhereHeaderAndDataSumToZero) {
    const UINT8 good[] = {0xC0, 0x02, 0x03, 0xFA, 0x41, 1, 2, 3};
    for (std::size_t wrong = 0; wrong <= sizeof good; ++wrong) {
        UINT8 bytes[sizeof good + 1] = {};
        std::copy(std::begin(good), std::end(good), bytes);
        ++bytes[wrong];
        FRUMultiRecord record;
        record.Decode({bytes, sizeof good});
        EXPECT_EQ(record.IsValid(), wrong == sizeof good) << wrong;
    }
}

TEST_F(CPiecesTest, LinesOfAFile) {
    const std::pair<std::string, std::vector<std::string>> rows[] = {{"a\r\nb", {"a", "b"}},
                                                                     {"a\n\rb\n", {"a", "b"}},
                                                                     {"a\n\nb", {"a", "", "b"}},
                                                                     {"\r", {""}},
                                                                     {"\r\r\n", {"", ""}}};
    for (const auto& [content, lines] : rows) {
        WriteFile("lines", content);
        CFile file("lines");
        ASSERT_TRUE(file.IsOpen());
        ASSERT_EQ(file.LineCount(), lines.size()) << testing::PrintToString(content);
        for (UINT32 line = 0; line < lines.size(); ++line)
            EXPECT_EQ(file.GetLine(line), lines[line]);
        EXPECT_ASSERTION(file.GetLine(file.LineCount()), "libfile", "ptr");
        EXPECT_ASSERTION(file.StripRightFromSequence(nullptr), "libfile", "sequence");
        for (const char* none : {"none", "empty", "enus"}) {
            WriteFile("empty", "");
            EXPECT_FALSE(file.Open(none));
            EXPECT_FALSE(file.IsOpen()) << none;
            EXPECT_EQ(file.GetDelimitedString(0, '\''), nullptr);
            EXPECT_ASSERTION(file.LineCount(), "libfile", "m_Cache");
        }
    }
}

TEST_F(CPiecesTest, ALineIsFoundByAnyTextBeforeItsFirstZero) {
    constexpr char content[] = "  key\n\n\nx\0key\ny key\0key\r\nke\ny";
    WriteFile("lines", std::string(content, sizeof content - 1));
    CFile file("lines");
    file.Strip();
    ASSERT_EQ(file.LineCount(), 7U);
    for (const auto& [start, text, line] : {std::tuple(0U, "key", 0U),
                                            {1U, "key", 4U},
                                            {5U, "key", 7U},
                                            {0U, "x", 3U},
                                            {0U, "ke", 0U},
                                            {5U, "ke", 5U},
                                            {6U, "y", 6U},
                                            {7U, "y", 7U}})
        EXPECT_EQ(file.FindLine(start, text), line) << start << text;
}

// What the library itself does not call is kept for hosts of the classes.
TEST_F(CPiecesTest, MembersKeptForHosts) {
    CFileHeader header;
    const struct {
        bool (CFileHeader::*set)(const char* text);
        const char* (CFileHeader::*get)() const;
    } rows[] = {{&CFileHeader::SetLfName, &CFileHeader::GetLfName},
                {&CFileHeader::SetLfVersion, &CFileHeader::GetLfVersion},
                {&CFileHeader::SetLfFmtVersion, &CFileHeader::GetLfFmtVersion},
                {&CFileHeader::SetIpmiVersion, &CFileHeader::GetIpmiVersion}};
    for (const auto& row : rows) {
        EXPECT_EQ((header.*row.get)(), nullptr);
        const std::string text = "value " + std::to_string(&row - rows);
        EXPECT_TRUE((header.*row.set)("old") && (header.*row.set)(text.c_str()));
        EXPECT_EQ((header.*row.get)(), text);
        EXPECT_ASSERTION((header.*row.set)(nullptr), "fileheader", "text");
    }
    CFruProperties properties;
    properties.IncrementNumberOfFrus();
    properties.IncrementNumberOfIpmiFrus();
    EXPECT_EQ(properties.GetNumberOfFrus(), 1);
    EXPECT_EQ(properties.GetNumberOfIpmiFrus(), 1) << "the number of FRUs";
    EXPECT_STREQ(properties.GetNumberOfIpmiFrusString(), L"1");
    CFru fru;
    EXPECT_EQ(fru.CreateFruList(), 0U);
    EXPECT_ASSERTION(fru.LoadFromFile(nullptr), "fru", "0");
    UINT8 byte = 0;
    UINT16 wanted = 1;
    fru.GetDevLocator()->type = FRU_TYPE_NONE;
    const FRU_LOCATOR& nowhere = *fru.GetDevLocator();
    EXPECT_EQ(CFru::ReadFruDataFromBmc(nowhere, 0, &byte, wanted), FRU_STATUS_READ_FRU_ERROR);
    EXPECT_EQ(wanted, 0);
    for (const EFI_STATUS status : {fru.WriteFruData(0, 1, &byte), CFru::WriteFruDataToBmc(nowhere, 0, &byte, 1),
                                    CFru::WriteFruDataTomBmc(nowhere, 0, &byte, 1)})
        EXPECT_EQ(status, FRU_STATUS_WRITE_FRU_ERROR);
    fru.GetDevLocator()->type = FRU_TYPE_IMBDEVICE;
    EXPECT_EQ(fru.WriteFruData(1, 0, &byte), 0U) << "no byte, no request";
    WriteFile("lines", "_SEE_BOARD\n01 02");
    const CFile file("lines");
    UINT8* data = nullptr;
    UINTN length = 0;
    EXPECT_EQ(CFru::ParseArea("_SEE_BOARD", file, 0, data, length), 0U);
    EXPECT_EQ(std::string(data, data + length), "\1\2");
    EXPECT_ASSERTION(CFru::SetParseAreaErrorMessage(0, L"", ""), "frureadfile", "status");
    SDR_TYPE sdr;
    sdr.fruLocators.reset(new TYPE11V15[1]);
    sdr.mcLocators.reset(new TYPE12V15[1]);
    sdr.typeCount[SDR_INDEX_MC_LOCATOR] = 1;
    SetLibDebugLevel(3);
    TakeLog();
    EXPECT_EQ(SDR_MEM_Free(sdr), 0U);
    EXPECT_EQ(TakeLog(), "FruData::SDR_MEM_Free [ENTRY]\r\nFruData::SDR_MEM_Free [EXIT]\r\n");
    EXPECT_TRUE(sdr.fruLocators && !sdr.mcLocators) << "only what holds a record is released";
}

TEST_F(CPiecesTest, LinesAreEdited) {
    const struct {
        const char* line;
        void (CFile::*edit)(UINT32 line);
        void (CFile::*editAll)();
        const char* edited;
    } rows[] = {{" \tab \t", &CFile::StripLeft, &CFile::StripLeft, "ab \t"},
                {" \tab \t", &CFile::StripRight, &CFile::StripRight, " \tab"},
                {" \ta b \t", &CFile::Strip, &CFile::Strip, "a b"},
                {" \t ", &CFile::Strip, &CFile::Strip, ""},
                {" a\tb c ", &CFile::SquishLine, nullptr, "abc"}};
    for (const auto& row : rows) {
        WriteFile("lines", std::string(row.line) + "\n" + row.line);
        CFile file("lines");
        (file.*row.edit)(1);
        EXPECT_STREQ(file.GetLine(0), row.line);
        EXPECT_STREQ(file.GetLine(1), row.edited);
        EXPECT_EQ(file.GetLineLength(1), std::strlen(row.edited));
        if (row.editAll)
            (file.*row.editAll)();
        EXPECT_STREQ(file.GetLine(0), row.editAll ? row.edited : row.line);
    }
    WriteFile("lines", "01 02 // note //\nx 'abc' y\nx 'abc\nx ''");
    CFile file("lines");
    file.StripRightFromSequence("//");
    EXPECT_STREQ(file.GetLine(0), "01 02 ");
    EXPECT_TRUE(file.LineContains(1, "'abc'") && !file.LineContains(1, "'aBc'"));
    for (const auto& [line, delimiter, text] :
         {std::tuple(1U, '\'', "abc"), {3U, '\'', ""}, {2U, '\'', nullptr}, {1U, '\0', nullptr}, {4U, '\'', nullptr}})
        EXPECT_STREQ(file.GetDelimitedString(line, delimiter), text) << line;
}

} // namespace
} // namespace Frudata_Tests
