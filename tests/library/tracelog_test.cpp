// The debug trace log.
#include "support.h"

namespace Frudata_Tests {
namespace {

class CTraceLogTest : public CLibraryTest {
  protected:
    CTraceLogTest() { std::filesystem::remove("DBGLOG.txt"); }
    ~CTraceLogTest() override { LIBDBG_DEBUG_LEVEL = 1; }

    /// What was logged since the last call.
    std::string TakeLog() {
        std::string log = ReadFile("DBGLOG.txt");
        std::filesystem::remove("DBGLOG.txt");
        return log;
    }
};

TEST_F(CTraceLogTest, LinesAboveTheLevelAreLeftOut) {
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
    }
}

TEST_F(CTraceLogTest, OperationsTraceTheirEntryExitAndFailure) {
    bool flag = false;
    unsigned int number = 0;
    m_table->SetDebugLevel(m_table, 7);
    TakeLog();
    m_table->IsLoaded(m_table, flag);
    EXPECT_EQ(TakeLog(), "FruData::IsLoaded [ENTRY]\r\nFruData::IsLoaded [EXIT]\r\n");
    m_table->SelectFru(m_table, 1);
    EXPECT_EQ(TakeLog(), "FruData::SelectFru [ENTRY]\r\nFruData::SelectFru - Unexpected\r\n"
                         "FruData::SetLastError [ENTRY]\r\nFruData::SetLastError [EXIT]\r\n");
    m_table->SetDisplayCallback(m_table, nullptr);
    m_table->SetPwd(m_table, reinterpret_cast<const UINT8*>("secret"), 6);
    EXPECT_EQ(TakeLog(), "") << "two operations are untraced";
    m_table->DeInitialize(m_table);
    TakeLog();
    m_table->GetNumberOfAreas(m_table, number);
    EXPECT_THAT(TakeLog(), testing::Not(testing::HasSubstr("[EXIT]")));
    m_table->Initialize(m_table, 0);
    const std::string start = TakeLog();
    EXPECT_THAT(start, testing::StartsWith("FruData::Initialize [ENTRY]\r\n"));
    EXPECT_THAT(start,
                testing::HasSubstr("FruData::SetLanguageLocale [ENTRY]\r\nFruData::SetLanguageLocale [EXIT]\r\n"));
    EXPECT_THAT(start, testing::EndsWith("FruData::Initialize [EXIT]\r\n"));
}

TEST_F(CTraceLogTest, FailureLinesOfTheirOwn) {
    LoadAndSelect(RichFru(), FRU_AREA_CHASSIS);
    m_table->SetLanguageLocale(m_table, L"no", L"no");
    EXPECT_EQ(TakeLog(), "FruData::SetLanguageLocale - Error Initializing String Resource\r\n");
    Set(0, "no type");
    EXPECT_EQ(TakeLog(), "FruData::SetFieldDataValue - Failed to set Chassis Data\r\n");
    m_table->SelectFieldInteger(m_table, 4);
    EXPECT_EQ(TakeLog(), "FruData::SelectFieldInteger - No such FRU Field\r\n");
    m_table->SelectAreaEnum(m_table, FRU_AREA_COMMON_HEADER);
    m_table->SelectFieldEnum(m_table, FRU_FIELD_CHASSIS_TYPE);
    EXPECT_EQ(TakeLog(), "FruData::SelectFieldEnum - Unsupported\r\n");
    m_table->CommitConfigurationToSystem(m_table);
    EXPECT_EQ(TakeLog(), "FruData::CommitConfigurationToSystem - Unexpected\r\n");
    m_table->SelectFruByAddress(m_table, FRU_TYPE_NONE, 0, 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(TakeLog(), "FruData::SelectFruByAddress - Error - Not Found\r\n");
}

TEST_F(CTraceLogTest, BufferDumps) {
    UINT8 data[32];
    for (int i = 0; i < 32; ++i)
        data[i] = static_cast<UINT8>(i < 16 ? 0x1E + i : 0x70 + i);
    data[5] = 0xCC;
    const std::string first = " 1E 1F 20 21 22    24 25 26 27 28 29 2A 2B 2C 2D\t.. !\".$%&'()*+,-\r\n";
    const std::string second = " 80 81 82 83 84 85 86 87 88 89 8A 8B 8C 8D 8E 8F\t................\r\n";
    const std::pair<int, std::string> rows[] = {
        {-1, ""}, {0, ""}, {1, first}, {16, first}, {17, first + second}, {20, first + second}};
    for (const auto& [length, dump] : rows) {
        SetLibDebugLevel(2);
        DbgBuffer(L"title", data, length);
        EXPECT_EQ(TakeLog(), "title\r\n" + dump + "\r\n") << length;
        SetLibDebugLevel(1);
        DbgBuffer(L"title", data, length);
        EXPECT_EQ(TakeLog(), "");
    }
}

TEST_F(CTraceLogTest, LevelsFromACommandLine) {
    const struct {
        std::vector<std::string> arguments;
        unsigned int level;
    } rows[] = {{{}, 0},
                {{"-debug1"}, 0}, // the program's name is no argument
                {{"x", "-debug1"}, 1},
                {{"x", "file", "-DEBUG2", "-debug3"}, 2},
                {{"x", "-Debug3"}, 3},
                {{"x", "-debug4"}, 0},
                {{"x", "debug1", "/debug1", "--debug1", "-debug11", "-debug", "-", ""}, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        std::vector<std::string> arguments = row.arguments;
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        WriteFile("DBGLOG.txt", "old");
        EXPECT_EQ(DecodeDebugLevel(static_cast<int>(arguments.size()), argv.data()), row.level);
        EXPECT_EQ(LIBDBG_DEBUG_LEVEL, row.level);
        EXPECT_EQ(ReadFile("DBGLOG.txt"), row.level ? "" : "old");
    }
}

TEST_F(CTraceLogTest, WideFileNames) {
    WriteFile("there", "content");
    EXPECT_EQ(wfopen(nullptr, L"r"), nullptr);
    EXPECT_EQ(wfopen(L"there", nullptr), nullptr);
    EXPECT_EQ(wfopen(L"gone", L"r"), nullptr);
    EXPECT_EQ(wfopen(L"\x4E2D", L"w"), nullptr) << "no such character in the C locale";
    FILE* file = wfopen(L"there", L"rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fgetc(file), 'c');
    std::fclose(file);
}

TEST_F(CTraceLogTest, AnUnwritableLogIsNoFailure) {
    std::filesystem::create_directory("DBGLOG.txt");
    Dbg(L"lost", 1);
    SetLibDebugLevel(2);
    DbgBuffer(L"lost", gPwd, 1);
    EXPECT_EQ(m_table->SelectList(m_table, 1), FRU_STATUS_NOT_LOADED);
    EXPECT_EQ(LastError(), L"T125");
}

} // namespace
} // namespace Frudata_Tests
