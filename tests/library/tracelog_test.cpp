// The debug trace log.
#include "support.h"

namespace Frudata_Tests {
namespace {

using CTraceLogTest = CLibraryTest;

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
    Told(m_table->IsLoaded);
    EXPECT_EQ(TakeLog(), "FruData::IsLoaded [ENTRY]\r\nFruData::IsLoaded [EXIT]\r\n");
    m_table->SelectFru(m_table, 1);
    EXPECT_EQ(TakeLog(), "FruData::SelectFru [ENTRY]\r\nFruData::SelectFru - Unexpected\r\n"
                         "FruData::SetLastError [ENTRY]\r\nFruData::SetLastError [EXIT]\r\n");
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
