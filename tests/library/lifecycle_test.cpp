// Start, end, settings, texts and the last error.
#include "support.h"

#include "frudata/bmclib.h"

namespace Frudata_Tests {
namespace {

using CLifecycleTest = CLibraryTest;

/// What a host finds that has called nothing yet.
const struct {
    bool flag = false;
    EFI_STATUS status = GetFruDataInterface()->IsLoaded(GetFruDataInterface(), flag);
    int port = KCSAddress;
    UINT32 level = LIBDBG_DEBUG_LEVEL;
} g_atFirst;

TEST(Library, BeforeItsStart) {
    EXPECT_EQ(g_atFirst.status, FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(g_atFirst.port, 0x0CA2);
    EXPECT_EQ(g_atFirst.level, 1U);
    EXPECT_EQ(GetFruDataInterface()->revision, 0x20000U);
    const UINT8 guid[] = "\xC0\x57\x71\xA2\x0E\xD8\x3A\x43\xAA\xD0\xF1\xE1\xF7\xEB\xD6\xA9";
    EXPECT_EQ(std::memcmp(&g_FruDataGuid, guid, sizeof g_FruDataGuid), 0);
}

TEST_F(CLifecycleTest, StartsAndEndsInEveryOrder) {
    bool loaded;
    EXPECT_FALSE(Told(m_table->IsLoaded));
    EXPECT_EQ(m_table->DeInitialize(m_table), 0U);
    EXPECT_EQ(m_table->DeInitialize(m_table), 0U) << "nothing was initialised";
    std::filesystem::rename("enus", "elsewhere");
    EXPECT_EQ(m_table->Initialize(m_table, 0), FRU_STATUS_INIT_FAILED);
    EXPECT_EQ(m_table->IsLoaded(m_table, loaded), FRU_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(m_table->DeInitialize(m_table), FRU_STATUS_NOT_INITIALIZED) << "after a failed start";
    std::filesystem::rename("elsewhere", "enus");
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U) << "a failed start is no obstacle";
    EXPECT_EQ(Load(FruText(BoardFru())), 0U);
    EXPECT_TRUE(Told(m_table->IsLoaded));
    EXPECT_EQ(m_table->Initialize(m_table, 0), 0U) << "a second start is not refused";
    EXPECT_FALSE(Told(m_table->IsLoaded)) << "a new start forgets what was loaded";
    EXPECT_EQ(m_table->LoadConfigurationFromSystem(m_table), 0U) << "no progress callback is set";
    EXPECT_TRUE(Told(m_table->IsLoaded)) << "an unreachable BMC counts as loaded";
}

TEST_F(CLifecycleTest, AFailedLanguageKeepsTheOldTexts) {
    m_table->DeInitialize(m_table);
    std::filesystem::remove_all("enus");
    EXPECT_EQ(m_table->Initialize(nullptr, 0), 0U);
    EXPECT_EQ(m_table->SelectList(m_table, FRU_LIST_FILE), FRU_STATUS_NOT_LOADED) << "no text, but the status";
    EXPECT_EQ(LastError(), L"");
    WriteTexts("atvienna", L"Wien ");
    EXPECT_EQ(m_table->SetLanguageLocale(m_table, L"at", L"vienna"), 0U);
    WriteTexts("frfr", L"F");
    WriteFile("frfr/frudata/str/frudata.str", ReadFile("frfr/frudata/str/frudata.str").substr(0, 2000));
    const std::pair<const wchar_t*, const wchar_t*> refused[] = {
        {L"fr", L"fr"}, {L"no", L"no"}, {nullptr, L"us"}, {L"en", nullptr}};
    for (const auto& [language, country] : refused)
        EXPECT_EQ(m_table->SetLanguageLocale(m_table, language, country), FRU_STATUS_STRING_RESOURCE_ERROR);
    bool modified = true;
    EXPECT_EQ(m_table->IsModified(m_table, modified), FRU_STATUS_NOT_LOADED);
    EXPECT_TRUE(modified) << "a failure writes nothing";
    EXPECT_EQ(LastError(), L"Wien 125");
}

TEST_F(CLifecycleTest, TextsMayTakeFewerArgumentsOrOthersFirst) {
    WriteTexts("atvienna", L"T",
               {{35, L"%2$02u.%1$02u.%3$04u"}, {89, L"Cannot be read"}, {90, L"%.3ls"}, {101, L"100 %% %s"}});
    ASSERT_EQ(m_table->SetLanguageLocale(m_table, L"at", L"vienna"), 0U);
    LoadAndSelect(RichFru(), FRU_AREA_BOARD);
    EXPECT_EQ(Value(0), L"15.05.1996");
    m_table->LoadConfigurationFromFile(m_table, L"gone.fru", nullptr);
    EXPECT_EQ(LastError(), L"Cannot be read");
    Load(WithLine(FruText(BoardFru()), "_DEV_ID", "_DEV_ID 100"));
    EXPECT_EQ(LastError(), L"T78");
    m_table->SelectFruByAddress(m_table, FRU_TYPE_NONE, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(LastError(), L"") << "it takes what nobody gives";
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
    m_table->SelectList(m_table, 0);
    Told(m_table->IsLoaded);
    EXPECT_EQ(LastError(), L"T125") << "a success does not clear the message";
    m_table->SelectList(m_table, 0);
    Restart(0);
    EXPECT_EQ(LastError(), L"") << "a start does";
    const std::wstring name(600, L'x');
    EXPECT_EQ(m_table->LoadConfigurationFromFile(m_table, name.c_str(), nullptr), FRU_STATUS_FILE_READ_ERROR);
    EXPECT_EQ(LastError(), L"T89 " + std::wstring(507, L'x')) << "long ones are cut";
}

TEST_F(CLifecycleTest, ThePasswordIsCopiedAndTheFirstZeroEndsIt) {
    const char password[] = "0123456789abcdef\0more";
    EXPECT_EQ(m_table->SetPwd(m_table, reinterpret_cast<const UINT8*>(password), 3), 0U);
    EXPECT_STREQ(reinterpret_cast<const char*>(gPwd), "0123456789abcdef");
}

} // namespace
} // namespace Frudata_Tests
