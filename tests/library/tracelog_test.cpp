// The debug trace log.
#include "support.h"

#include "tests/support/tracelog.h"

#include <functional>
#include <sstream>

namespace Frudata_Tests {
namespace {

namespace fs = std::filesystem;

class CTraceLogTest : public CLibraryTest {
  protected:
    /// The operations that only tell, select or set, of which each must succeed.
    void AskForEverything() {
        UINT8 bytes[64];
        unsigned int first, second, size = sizeof bytes;
        FRU_TYPE type = FRU_TYPE_NONE;
        UINT16 word;
        const auto is = [](EFI_STATUS status) { EXPECT_EQ(status, 0U); };
        for (const auto tell :
             {m_table->IsLoaded, m_table->IsModified, m_table->HasInternalUseArea, m_table->HasBoardArea,
              m_table->HasProductArea, m_table->HasChassisArea, m_table->HasMultiRecordArea})
            Told(tell);
        is(m_table->GetNumberOfFrus(m_table, first, second));
        is(m_table->GetFruAddress(m_table, type, bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5], word));
        is(m_table->SelectFruByAddress(m_table, type, bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], 0, 0));
        Told(m_table->GetFruName);
        Told(m_table->GetNumberOfAreas);
        for (const FRU_AREA area : {FRU_AREA_MULTIRECORD, FRU_AREA_INTERNAL_USE}) {
            size = sizeof bytes;
            is(m_table->SelectAreaEnum(m_table, area));
            Told(m_table->GetAreaName);
            Told(m_table->GetAreaSize);
            is(m_table->GetAreaData(m_table, bytes, size));
            is(m_table->SetAreaData(m_table, bytes, size));
        }
        size = 8;
        is(m_table->SelectAreaEnum(m_table, FRU_AREA_COMMON_HEADER));
        is(m_table->GetAreaData(m_table, bytes, size));
        for (const auto& [area, field] : {std::pair(FRU_AREA_INTERNAL_USE, FRU_FIELD_INTERNAL_USE_DATA),
                                          {FRU_AREA_CHASSIS, FRU_FIELD_CHASSIS_SERIAL_NUMBER},
                                          {FRU_AREA_PRODUCT, FRU_FIELD_PRODUCT_FILE_ID},
                                          {FRU_AREA_BOARD, FRU_FIELD_BOARD_MFG_DATE_TIME}}) {
            is(m_table->SelectAreaEnum(m_table, area));
            is(m_table->SelectFieldEnum(m_table, field));
        }
        EXPECT_EQ(Set(0, "abc"), 0U);
        Data(0);
        Told(m_table->GetMaxFieldSize);
        Told(m_table->GetAssetTagLength);
        LastError();
        is(m_table->SetProgressCallback(m_table, nullptr));
        is(m_table->SetProgressCallbackInterval(m_table, 1));
        is(m_table->SetDebugLevel(m_table, 3));
    }
};

TEST_F(CTraceLogTest, LinesAndBuffersUpToTheLevel) {
    UINT8 data[32];
    for (int i = 0; i < 32; ++i)
        data[i] = static_cast<UINT8>(i < 16 ? 0x1E + i : 0x70 + i);
    data[5] = 0xCC;
    const std::string first = " 1E 1F 20 21 22    24 25 26 27 28 29 2A 2B 2C 2D\t.. !\".$%&'()*+,-\r\n";
    const std::string second = " 80 81 82 83 84 85 86 87 88 89 8A 8B 8C 8D 8E 8F\t................\r\n";
    const std::pair<int, std::string> rows[] = {
        {-1, ""}, {0, ""}, {1, first}, {16, first}, {17, first + second}, {20, first + second}};
    TakeLog();
    for (unsigned int level = 0; level < 5; ++level) {
        SetLibDebugLevel(level);
        EXPECT_EQ(LIBDBG_DEBUG_LEVEL, level);
        std::string expected;
        for (unsigned int line = 1; line <= 4; ++line) {
            Dbg(L"%ls %u%%", line, L"line", line);
            if (line <= level)
                expected += "line " + std::to_string(line) + "%\r\n";
        }
        EXPECT_EQ(TakeLog(), expected) << level;
        for (const auto& [length, dump] : rows) {
            DbgBuffer(L"title", data, length);
            EXPECT_EQ(TakeLog(), level < 2 ? "" : "title\r\n" + dump + "\r\n") << length;
        }
    }
    std::filesystem::create_directory("DBGLOG.txt");
    Dbg(L"lost", 1);
    EXPECT_EQ(m_table->SelectList(m_table, 1), FRU_STATUS_NOT_LOADED) << "an unwritable log is no failure";
}

TEST_F(CTraceLogTest, OperationsTraceTheirEntryExitAndFailure) {
    m_table->SetDebugLevel(m_table, 7);
    TakeLog();
    m_table->SetDisplayCallback(m_table, nullptr);
    m_table->SetPwd(m_table, reinterpret_cast<const UINT8*>("secret"), 6);
    EXPECT_EQ(TakeLog(), "") << "two operations are untraced";
    Restart(0);
    EXPECT_THAT(TakeLog(), testing::AllOf(testing::HasSubstr("FruData::Initialize [ENTRY]\r\n"),
                                          testing::HasSubstr("FruData::SetLanguageLocale [ENTRY]\r\n"
                                                             "FruData::SetLanguageLocale [EXIT]\r\n"),
                                          testing::EndsWith("FruData::Initialize [EXIT]\r\n")));
    SetLibDebugLevel(1);
    LoadAndSelect(RichFru(), FRU_AREA_CHASSIS);
    Set(0, "no type");
    m_table->SetLanguageLocale(m_table, L"no", L"no");
    m_table->SelectFieldInteger(m_table, 4);
    m_table->SelectAreaEnum(m_table, FRU_AREA_COMMON_HEADER);
    m_table->SelectFieldEnum(m_table, FRU_FIELD_CHASSIS_TYPE);
    m_table->CommitConfigurationToSystem(m_table);
    m_table->SelectFruByAddress(m_table, FRU_TYPE_NONE, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(TakeLog(), "FruData::SetFieldDataValue - Failed to set Chassis Data\r\n"
                         "FruData::SetLanguageLocale - Error Initializing String Resource\r\n"
                         "FruData::SelectFieldInteger - No such FRU Field\r\n"
                         "FruData::SelectFieldEnum - Unsupported\r\n"
                         "FruData::CommitConfigurationToSystem - Unexpected\r\n"
                         "FruData::SelectFruByAddress - Error - Not Found\r\n");
}

/// The failures of a log, "!" where a message was recorded, and the last line if it is an exit.
std::string Failures(const std::string& log) {
    std::istringstream lines(log);
    std::string failures, last;
    for (std::string line; std::getline(lines, line); last = line)
        if (line == "FruData::SetLastError [ENTRY]\r")
            failures += "! ";
        else if (line.find(" - ") != std::string::npos)
            failures += line.substr(0, line.size() - 1) + " ";
    return failures + (last.ends_with("[EXIT]\r") && !last.starts_with("FruData::SetLastError") ? "X" : "");
}

TEST_F(CTraceLogTest, CursorAndValuesRecordFirstAllElseTracesFirst) {
    UINT8 bytes[64] = {1};
    unsigned int size = 0;
    const auto select = [this](FRU_AREA area, unsigned int field = 0) {
        m_table->SelectAreaEnum(m_table, area);
        m_table->SelectFieldInteger(m_table, field);
    };
    const std::pair<std::function<EFI_STATUS()>, const char*> rows[] = {
        {[&] { return m_table->SelectFru(m_table, 9); }, "! FruData::SelectFru - Unexpected "},
        {[&] { return m_table->SelectAreaInteger(m_table, 9); }, "! FruData::SelectAreaInteger - Unexpected "},
        {[&] { return m_table->GetAreaSize(m_table, size); }, "! FruData::GetAreaSize - Unexpected X"},
        {[&] { return m_table->GetAreaData(m_table, bytes, size); }, "! FruData::GetAreaData - Unexpected X"},
        {[&] { return m_table->SetAreaData(m_table, bytes, 64); }, "! FruData::SetAreaData - Unexpected X"},
        {[&] { return m_table->GetAreaSize(nullptr, size); }, "! FruData::GetAreaSize - Unexpected "},
        {[&] { return m_table->SetAreaData(m_table, nullptr, 0); }, "! FruData::SetAreaData - Unexpected "},
        {[&] { return m_table->SetFieldDataValue(m_table, bytes, 64); },
         "CBoardInfoArea::SetFileId - FRU Data too long ! ! FruData::SetFieldDataValue - Failed to set Board Data "},
        {[&] {
             m_table->SelectFieldInteger(m_table, 0);
             return m_table->SetFieldDataValue(m_table, bytes, 2);
         },
         "CBoardInfoArea::SetFieldData - Invalid Mfg Date Time ! ! "
         "FruData::SetFieldDataValue - Failed to set Board Data "},
        {[&] { return m_table->CommitConfigurationToSystem(m_table); },
         "FruData::CommitConfigurationToSystem - Unexpected ! "},
        {[&] { return m_table->SaveConfigurationToFile(m_table, L"enus", nullptr); },
         "CFru::SaveFRUFileHeader - Error Writing File ! X"},
        {[&] { return m_table->SaveConfigurationToFile(m_table, L"\u00e4", nullptr); },
         "FruData::SaveConfigurationToFile - Error Writing File ! "},
        {[&] { return m_table->LoadConfigurationFromFile(m_table, L"\u00e4", nullptr); },
         "FruData::LoadConfigurationFromFile - Unexpected ! "},
        {[&] { return m_table->LoadConfigurationFromFile(m_table, L"gone", nullptr); },
         "CFru::ReadFRUFromFile - Unexpected ! "},
        {[&] { return m_table->SelectList(m_table, 3); }, "FruData::SelectList - Unexpected ! "},
        {[&] {
             fs::remove_all("enus");
             return m_table->Initialize(m_table, 0);
         },
         "FruData::SetLanguageLocale - Error Initializing String Resource "
         "FruData::Initialize - Error Initializing String Resource "},
    };
    for (const auto& [operate, failures] : rows) {
        ASSERT_EQ(Load(FruText(RichFru())), 0U);
        select(FRU_AREA_BOARD, 5);
        SetLibDebugLevel(3);
        TakeLog();
        EXPECT_NE(operate(), 0U) << failures;
        const std::string log = TakeLog();
        EXPECT_EQ(Failures(log), failures) << log;
        EXPECT_EQ(log.find("SetMfgDateTime"), std::string::npos) << "it is for three bytes";
        SetLibDebugLevel(1);
    }
}

// A whole session that succeeds: what is entered is left again, in order, and what is entered is known.
TEST_F(CTraceLogTest, ASession) {
    SetLibDebugLevel(3);
    TakeLog();
    Restart(0);
    FRU_BYTES fru = RichFru();
    fru.board = CompactArea(BYTES{1, 0, 0, 0, 0, 0} + BYTES{0xC1, 'a'} + Field("b", 0x40) + BYTES(3, 0xC0), 64);
    for (const FRU_BYTES& content : {RichFru(), fru})
        EXPECT_EQ(Load(FruText(content)), 0U);
    m_table->SelectFru(m_table, 0);
    for (unsigned int area = 0; area < 5; ++area) {
        m_table->SelectAreaInteger(m_table, area);
        for (unsigned int field = 0; field < Told(m_table->GetNumberOfFields); ++field) {
            Value(field);
            Told(m_table->GetFieldTitle);
        }
        if (area > 0 && area < 4) {
            EXPECT_EQ(Set(1, "x"), 0U);
            EXPECT_EQ(Set(Told(m_table->GetNumberOfFields) - 1, "y"), 0U);
        }
    }
    AskForEverything();
    m_table->SelectFru(m_table, 1);
    Saved();
    Restart(0);
    SetLibDebugLevel(1);
    const std::string log = TakeLog();
    EXPECT_THAT(log, testing::HasSubstr("CBoardInfoArea::ParseField [ENTRY]\r\nFruDefs::DecodeLength [ENTRY]\r\n"
                                        "FruDefs::DecodeLength [EXIT]\r\nCBoardInfoArea::ParseField [EXIT]\r\n"));
    std::istringstream known(ReadFile(FRUDATA_TEST_OPERATIONS));
    EXPECT_THAT(BalancedOperations(log),
                testing::ContainerEq(std::set<std::string>(std::istream_iterator<std::string>(known), {})));
    // Of the second FRU's 13 fields, one reads like the end marker: nothing of it is written but its type/length byte.
    std::size_t written = 0;
    for (std::size_t at = 0; (at = log.find("::WriteDataToFRUFile [ENTRY]", at) + 1) > 0;)
        ++written;
    EXPECT_EQ(written, 3U + 4U + 8U);
}

TEST_F(CTraceLogTest, LevelsFromACommandLine) {
    using ARGUMENTS = std::vector<std::string>;
    const std::vector<ARGUMENTS> rows[] = {
        // by level; the program's name is no argument
        {{}, {"-debug1"}, {"x", "-debug4"}, {"x", "debug1", "/debug1", "--debug1", "-debug11", "-debug", "-", ""}},
        {{"x", "-debug1"}},
        {{"x", "file", "-DEBUG2", "-debug3"}},
        {{"x", "-Debug3"}}};
    for (unsigned int level = 0; level < 4; ++level)
        for (ARGUMENTS arguments : rows[level]) {
            std::vector<char*> argv;
            for (std::string& argument : arguments)
                argv.push_back(argument.data());
            argv.push_back(nullptr);
            WriteFile("DBGLOG.txt", "old");
            EXPECT_EQ(DecodeDebugLevel(static_cast<int>(arguments.size()), argv.data()), level);
            EXPECT_EQ(LIBDBG_DEBUG_LEVEL, level) << testing::PrintToString(arguments);
            EXPECT_EQ(ReadFile("DBGLOG.txt"), level ? "" : "old");
        }
}

} // namespace
} // namespace Frudata_Tests
