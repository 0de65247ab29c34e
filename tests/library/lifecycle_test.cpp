// Start, end, settings, texts and the last error.
#include "support.h"

#include <cstring>

namespace Frudata_Tests {
namespace {

using CLifecycleTest = CLibraryTest;

TEST(TableTest, HasItsRevisionAndGuid) {
    EXPECT_EQ(GetFruDataInterface(), &Frudata_Public::FRUDataInterface);
    EXPECT_EQ(GetFruDataInterface()->revision, 0x00020000U);
    const UINT8 guid[] = {0xC0, 0x57, 0x71, 0xA2, 0x0E, 0xD8, 0x3A, 0x43,
                          0xAA, 0xD0, 0xF1, 0xE1, 0xF7, 0xEB, 0xD6, 0xA9};
    EXPECT_EQ(std::memcmp(&g_FruDataGuid, guid, sizeof guid), 0);
}

TEST_F(CLifecycleTest, StartsAndEndsInEveryOrder) {
    bool loaded = true;
    EXPECT_EQ(m_table->IsLoaded(m_table, loaded), 0U);
    EXPECT_FALSE(loaded);
    EXPECT_EQ(m_table->DeInitialize(m_table), 0U);
    EXPECT_EQ(m_table->DeInitialize(m_table), 0U) << "nothing was initialised";

    std::filesystem::rename("enus", "elsewhere");
    EXPECT_EQ(m_table->Initialize(m_table, 0), FRU_STATUS_INIT_FAILED);
    EXPECT_EQ(m_table->IsLoaded(m_table, loaded), FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(m_table->DeInitialize(m_table), FRU_STATUS_NOT_INITIALIZED) << "after a failed start";

    std::filesystem::rename("elsewhere", "enus");
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U) << "a failed start is no obstacle";
    EXPECT_EQ(Load(FruText(BoardFru())), 0U);
    EXPECT_EQ(m_table->IsLoaded(m_table, loaded), 0U);
    EXPECT_TRUE(loaded);
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U) << "a second start is not refused";
    EXPECT_EQ(m_table->IsLoaded(m_table, loaded), 0U);
    EXPECT_FALSE(loaded) << "a new start forgets what was loaded";
}

TEST_F(CLifecycleTest, WithoutATableAddressNoTextsAreLoaded) {
    m_table->DeInitialize(m_table);
    std::filesystem::remove_all("enus");
    EXPECT_EQ(m_table->Initialize(nullptr, 0), 0U);
    EXPECT_EQ(m_table->SelectList(m_table, FRU_LIST_FILE), FRU_STATUS_NOT_LOADED) << "no text, but the status";
    EXPECT_EQ(LastError(), L"");
    WriteTexts("atvienna", L"Wien ");
    EXPECT_EQ(m_table->SetLanguageLocale(m_table, L"at", L"vienna"), 0U);
    EXPECT_EQ(m_table->SelectList(m_table, FRU_LIST_FILE), FRU_STATUS_NOT_LOADED);
    EXPECT_EQ(LastError(), L"Wien 125");
}

TEST_F(CLifecycleTest, AFailedLanguageKeepsTheOldTexts) {
    WriteTexts("dede", L"D");
    EXPECT_EQ(m_table->SetLanguageLocale(m_table, L"de", L"de"), 0U);
    WriteTexts("frfr", L"F");
    WriteFile("frfr/frudata/str/frudata.str", ReadFile("frfr/frudata/str/frudata.str").substr(0, 2000));
    const std::pair<const wchar_t*, const wchar_t*> refused[] = {
        {L"fr", L"fr"}, {L"no", L"no"}, {nullptr, L"us"}, {L"en", nullptr}};
    for (const auto& [language, country] : refused)
        EXPECT_EQ(m_table->SetLanguageLocale(m_table, language, country), FRU_STATUS_STRING_RESOURCE_ERROR);
    bool modified = true;
    EXPECT_EQ(m_table->IsModified(m_table, modified), FRU_STATUS_NOT_LOADED);
    EXPECT_TRUE(modified) << "a failure writes nothing";
    EXPECT_EQ(LastError(), L"D125");
}

TEST_F(CLifecycleTest, TheShippedTextsLoadInBothLanguages) {
    const std::string locales[] = {"enus", "dede"};
    for (const std::string& locale : locales) {
        std::filesystem::remove_all(locale);
        std::filesystem::create_directory_symlink(FRUDATA_TEXTS "/" + locale, locale);
        const std::wstring wide(locale.begin(), locale.end());
        EXPECT_EQ(m_table->SetLanguageLocale(m_table, wide.c_str(), L""), 0U);
        const std::vector<std::wstring> texts = ReadTexts(locale + "/frudata/str/frudata.str");
        m_table->LoadConfigurationFromFile(m_table, L"gone.fru", nullptr);
        std::wstring expected = texts.at(89);
        expected.replace(expected.find(L"%s"), 2, L"gone.fru");
        EXPECT_EQ(LastError(), expected);
        LoadAndSelect(RichFru(), FRU_AREA_CHASSIS);
        EXPECT_EQ(Value(0), texts.at(52)) << "rack mount chassis";
    }
}

TEST_F(CLifecycleTest, MessagesAreHandedOutOnceAndSurviveTheNextFailure) {
    const wchar_t* first = nullptr;
    const wchar_t* second = nullptr;
    m_table->SelectList(m_table, 0);
    m_table->GetLastErrorMessage(m_table, first);
    m_table->LoadConfigurationFromFile(m_table, L"gone.fru", nullptr);
    EXPECT_STREQ(first, L"T125");
    m_table->GetLastErrorMessage(m_table, second);
    EXPECT_STREQ(first, L"");
    EXPECT_STREQ(second, L"T89 gone.fru");
    EXPECT_EQ(LastError(), L"");
    m_table->SelectList(m_table, 0);
    bool loaded;
    m_table->IsLoaded(m_table, loaded);
    EXPECT_EQ(LastError(), L"T125") << "a success does not clear the message";
    m_table->SelectList(m_table, 0);
    m_table->DeInitialize(m_table);
    m_table->Initialize(m_table, 0);
    EXPECT_EQ(LastError(), L"") << "a start does";
}

TEST_F(CLifecycleTest, LongMessagesAreCut) {
    const std::wstring name(600, L'x');
    EXPECT_EQ(m_table->LoadConfigurationFromFile(m_table, name.c_str(), nullptr), FRU_STATUS_FILE_READ_ERROR);
    EXPECT_EQ(LastError(), L"T89 " + std::wstring(507, L'x'));
}

TEST_F(CLifecycleTest, ThePasswordIsCopiedAndTheFirstZeroEndsIt) {
    const char password[] = "0123456789abcdef\0more";
    EXPECT_EQ(m_table->SetPwd(m_table, reinterpret_cast<const UINT8*>(password), 3), 0U);
    EXPECT_STREQ(reinterpret_cast<const char*>(gPwd), "0123456789abcdef");
}

TEST_F(CLifecycleTest, AnUnreachableBmcCountsAsLoaded) {
    bool loaded = false;
    EXPECT_EQ(m_table->LoadConfigurationFromSystem(m_table), 0U) << "without progress, so without its callback";
    EXPECT_EQ(m_table->IsLoaded(m_table, loaded), 0U);
    EXPECT_TRUE(loaded);
}

} // namespace
} // namespace Frudata_Tests
