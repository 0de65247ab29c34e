// Tables of texts: which ones load, and which of their texts are used.
#include "support.h"

#include "common/allocate.h"
#include "common/lasterror.h"

#include <dlfcn.h>
#include <malloc.h>

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

TEST_F(CPiecesTest, LoadingAndUnloadingTheLibraryLeavesNoMemoryBehind) {
    const auto load = [](int times) {
        while (times-- > 0) {
            void* library = dlopen(FRUDATA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
            ASSERT_NE(library, nullptr) << dlerror();
            dlclose(library);
        }
    };
    load(10);
    const std::size_t before = mallinfo2().uordblks;
    load(1000);
    EXPECT_LT(mallinfo2().uordblks, before + 64 * 1000) << "the loader itself keeps a few bytes each time";
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
}

} // namespace
} // namespace Frudata_Tests
