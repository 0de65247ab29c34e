// The function table's operations at every position of the cursor.
#include "support.h"

namespace Frudata_Tests {
namespace {

using TABLE = _EFI_FRU_INTERFACE*;

enum STATE {
    UNINITIALISED,
    NOTHING_LOADED,
    NO_LIST,
    NO_FRU,
    NO_AREA,
    NO_FIELD,
    FIELD_SELECTED,
    STATE_COUNT
};

struct OPERATION {
    const char* name;
    const char* statuses;   // one column a state: '0' success, else the status's last digits, 'U' 0x30, '8' 0x28
    const wchar_t* message; // unless NOT_LOADED or NOT_SELECTED, whose text is 125
    EFI_STATUS (*call)(TABLE table);
};

#define ROW(statuses, message, operation, ...)                                                                         \
    {                                                                                                                  \
#operation, statuses, message, [](TABLE table) { return table->operation(table __VA_OPT__(, ) __VA_ARGS__); }  \
    }

const UINT8 g_bytes[] = {'a', 'b', 0, 'd'};
bool g_flag;
unsigned int g_number, g_other;
const wchar_t* g_text;
const UINT8* g_data;
UINT8 g_byte, g_buffer[64];
UINT16 g_word;
FRU_TYPE g_type;

const OPERATION g_operations[] = {
    ROW("5000000", L"T109 T134 0 32 32 255", LoadConfigurationFromSystem),
    ROW("5777777", L"T89 gone.fru", LoadConfigurationFromFile, L"gone.fru", nullptr),
    ROW("5000000", L"", LoadConfigurationFromFile, L"in.fru", L"ignored"),
    ROW("5BDDDDD", L"T125", CommitConfigurationToSystem),
    ROW("5BCC000", L"", SaveConfigurationToFile, L"out.fru", nullptr),
    ROW("5000000", L"", IsLoaded, g_flag),
    ROW("5B00000", L"", IsModified, g_flag),
    ROW("5000000", L"", GetLastErrorMessage, g_text),
    ROW("0000000", L"", SetLanguageLocale, L"en", L"us"),
    ROW("5000000", L"", SetProgressCallback, nullptr),
    ROW("5000000", L"", SetProgressCallbackInterval, 0),
    ROW("5000000", L"", SetDebugLevel, 1),
    ROW("0000000", L"", SetDisplayCallback, nullptr),
    ROW("5888888", L"T109 T134 2 4 3 5", LoadFruAtAddress, FRU_TYPE_NONE, 1, 3, 5, 4, 2, 6, 7),
    ROW("5B00000", L"", SelectList, FRU_LIST_SYSTEM),
    ROW("5BDDDDD", L"T125", SelectList, 0),
    ROW("5BDDDDD", L"T125", SelectList, 3),
    ROW("5BC0000", L"", GetNumberOfFrus, g_number, g_other),
    ROW("5BC0000", L"", SelectFru, 0),
    ROW("5BCDDDD", L"T125", SelectFru, 1),
    ROW("5BC0000", L"", SelectFruByAddress, FRU_TYPE_IMBDEVICE, 1, 0x3C, 0xFF, 0x20, 5, 77, 7777),
    ROW("5BCDDDD", L"T101", SelectFruByAddress, FRU_TYPE_IMBDEVICE, 0, 0x3C, 0xFF, 0x20, 5, 255, 0),
    ROW("5BCC000", L"", GetFruName, g_text),
    ROW("5BCC000", L"", GetFruAddress, g_type, g_byte, g_byte, g_byte, g_byte, g_byte, g_byte, g_word),
    ROW("5BCC000", L"", HasInternalUseArea, g_flag),
    ROW("5BCC000", L"", HasBoardArea, g_flag),
    ROW("5BCC000", L"", HasProductArea, g_flag),
    ROW("5BCC000", L"", HasChassisArea, g_flag),
    ROW("5BCC000", L"", HasMultiRecordArea, g_flag),
    ROW("5BCC000", L"", GetNumberOfAreas, g_number),
    ROW("5BCC000", L"", SelectAreaEnum, FRU_AREA_BOARD),
    ROW("5BCC000", L"", SelectAreaEnum, FRU_AREA_CHASSIS),
    ROW("5BCCDDD", L"T125", SelectAreaEnum, FRU_AREA_NONE),
    ROW("5BCCDDD", L"T125", SelectAreaEnum, static_cast<FRU_AREA>(7)),
    ROW("5BCC000", L"", SelectAreaInteger, 0),
    ROW("5BCCDDD", L"T125", SelectAreaInteger, 1),
    ROW("5BCCC00", L"", GetAreaName, g_text),
    ROW("5BCCC00", L"", GetNumberOfFields, g_number),
    ROW("5BCCC00", L"", SelectFieldEnum, FRU_FIELD_BOARD_FILE_ID),
    ROW("5BCCC00", L"", SelectFieldInteger, 8),
    ROW("5BCCCDD", L"T135", SelectFieldInteger, 9),
    ROW("5BCCCC0", L"", GetFieldTitle, g_text),
    ROW("5BCCC00", L"", GetMaxFieldSize, g_number),
    ROW("5BCCCC0", L"", GetFieldStringValue, g_text),
    ROW("5BCCCC0", L"", GetFieldDataValue, g_data, g_number),
    ROW("5BCCCC0", L"", SetFieldDataValue, g_bytes, 2),
    ROW("5000000", L"", LoadPropertiesFromSystem),
    ROW("5BBBBBB", L"", GetNumberOfProperties, g_number),
    ROW("5BBBBBB", L"", SelectProperty, 0),
    ROW("5BBBBBB", L"", GetPropertyTitle, g_text),
    ROW("5BBBBBB", L"", GetPropertyValue, g_text),
    ROW("5BCCCUU", L"T125", GetAreaData, g_buffer, g_number),
    ROW("5BCCCUU", L"T125", SetAreaData, g_bytes, 4),
    ROW("0000000", L"", SetPwd, g_bytes, 0),
    ROW("5BCCCUU", L"T125", GetAreaSize, g_number),
    ROW("5888888", L"T123", FindFruAtAddressAndChecksumHeader, FRU_TYPE_NONE, 0, 0, 0, 0, 0),
    ROW("5B00000", L"", GetAssetTagLength, g_number),
};

unsigned int IgnoreProgress(PROGRESS_CALLBACK_TYPE, const WCHAR*, unsigned int, unsigned int) {
    return 0;
}

EFI_STATUS StatusOf(char digit) {
    if (digit == '0')
        return 0;
    if (digit == 'U')
        return FRU_STATUS_UNSUPPORTED;
    if (digit == '8')
        return FRU_STATUS_READ_FRU_ERROR;
    return 0xC0070000U + static_cast<EFI_STATUS>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

class CCursorTest : public CLibraryTest {
  protected:
    void Enter(int state) {
        m_table->DeInitialize(m_table);
        if (state > UNINITIALISED)
            m_table->Initialize(m_table, 0);
        m_table->SetProgressCallback(m_table, IgnoreProgress);
        if (state > NOTHING_LOADED)
            Load(FruText(BoardFru()));
        if (state == NO_LIST)
            m_table->SelectList(m_table, 3);
        if (state == NO_FRU)
            m_table->SelectList(m_table, FRU_LIST_FILE);
        if (state > NO_AREA)
            m_table->SelectAreaEnum(m_table, FRU_AREA_BOARD);
        if (state > NO_FIELD)
            m_table->SelectFieldInteger(m_table, 1);
        LastError();
    }
};

TEST_F(CCursorTest, EveryOperationInEveryState) {
    WriteFile("in.fru", FruText(BoardFru()));
    for (const OPERATION& operation : g_operations)
        for (int state = 0; state < STATE_COUNT; ++state) {
            SCOPED_TRACE(std::string(operation.name) + " in state " + std::to_string(state));
            Enter(state);
            std::filesystem::remove("DBGLOG.txt");
            const char digit = operation.statuses[state];
            EXPECT_EQ(operation.call(m_table), StatusOf(digit));
            const bool isUnexpected = digit == 'B' || digit == 'C';
            if (isUnexpected) {
                EXPECT_EQ(ReadFile("DBGLOG.txt"), std::string("FruData::") + operation.name + " - Unexpected\r\n");
            }
            EXPECT_EQ(LastError(), isUnexpected ? L"T125" : digit == '5' ? L"" : operation.message);
            EXPECT_EQ(LastError(), L"");
        }
}

TEST_F(CCursorTest, FailedSelectionsClearWhatWasSelected) {
    const struct {
        int levelLeft; // 3: no FRU, 4: a FRU, 5: a FRU and an area
        OPERATION selection;
    } rows[] = {
        {3, ROW("D", L"", SelectFru, 1)},
        {3, ROW("D", L"", SelectFruByAddress, FRU_TYPE_AT24CO2, 1, 0x3C, 0xFF, 0x20, 5, 255, 0)},
        {4, ROW("D", L"", SelectAreaEnum, static_cast<FRU_AREA>(-1))},
        {4, ROW("0", L"", SelectAreaEnum, FRU_AREA_MULTIRECORD)},
        {4, ROW("D", L"", SelectAreaInteger, 1)},
        {4, ROW("0", L"", SelectFru, 0)},
        {5, ROW("0", L"", SelectAreaInteger, 0)},
        {5, ROW("D", L"", SelectFieldInteger, 99)},
    };
    for (const auto& [levelLeft, selection] : rows) {
        SCOPED_TRACE(selection.name);
        Enter(FIELD_SELECTED);
        EXPECT_EQ(selection.call(m_table), StatusOf(selection.statuses[0]));
        EXPECT_EQ(m_table->GetFruName(m_table, g_text) == 0, levelLeft >= 4);
        EXPECT_EQ(m_table->GetAreaName(m_table, g_text) == 0, levelLeft >= 5);
        EXPECT_EQ(m_table->GetFieldTitle(m_table, g_text), FRU_STATUS_NOT_SELECTED);
    }
}

TEST_F(CCursorTest, EveryPartOfTheAddressButTheLastTwoMustMatch) {
    Enter(NO_FRU);
    for (int part = 0; part < 6; ++part) {
        UINT8 address[] = {2, 1, 0x3C, 0xFF, 0x20, 5};
        ++address[part];
        EXPECT_EQ(m_table->SelectFruByAddress(m_table, static_cast<FRU_TYPE>(address[0]), address[1], address[2],
                                              address[3], address[4], address[5], 0xFF, 0),
                  FRU_STATUS_NO_SUCH_FIELD)
            << part;
    }
}

TEST_F(CCursorTest, FrusAreAppendedAndTheFirstOfTwoEqualAddressesWins) {
    Enter(NOTHING_LOADED);
    ASSERT_EQ(Load(WithLine(FruText(BoardFru()), "_FRU_TITLE", "_FRU_TITLE 'First'")), 0U);
    ASSERT_EQ(Load(WithLine(FruText(BoardFru()), "_FRU_TITLE", "_FRU_TITLE 'Second'")), 0U);
    EXPECT_EQ(m_table->GetFruName(m_table, g_text), 0U);
    EXPECT_STREQ(g_text, L"Second");
    EXPECT_EQ(m_table->SelectFruByAddress(m_table, FRU_TYPE_IMBDEVICE, 1, 0x3C, 0xFF, 0x20, 5, 0, 0), 0U);
    EXPECT_EQ(m_table->GetFruName(m_table, g_text), 0U);
    EXPECT_STREQ(g_text, L"First");
    EXPECT_EQ(m_table->GetNumberOfFrus(m_table, g_number, g_other), 0U);
    EXPECT_EQ(g_number * 10 + g_other, 22U);
    m_table->SelectList(m_table, FRU_LIST_SYSTEM);
    EXPECT_EQ(m_table->GetNumberOfFrus(m_table, g_number, g_other), 0U);
    EXPECT_EQ(g_number * 10 + g_other, 0U);
    EXPECT_EQ(m_table->SelectFru(m_table, 0), FRU_STATUS_NO_SUCH_FIELD);
    EXPECT_EQ(m_table->CommitConfigurationToSystem(m_table), FRU_STATUS_NO_SUCH_FIELD);
}

TEST_F(CCursorTest, PresentAreasAreNumberedInAFixedOrder) {
    const FRU_BYTES rich = RichFru();
    for (unsigned int mask = 0; mask < 32; ++mask) {
        SCOPED_TRACE(mask);
        FRU_BYTES fru;
        BYTES FRU_BYTES::*const areas[] = {&FRU_BYTES::internalUse, &FRU_BYTES::chassis, &FRU_BYTES::board,
                                           &FRU_BYTES::product, &FRU_BYTES::multiRecord};
        decltype(&_EFI_FRU_INTERFACE::HasBoardArea)
            const has[] = {&_EFI_FRU_INTERFACE::HasInternalUseArea, &_EFI_FRU_INTERFACE::HasChassisArea,
                           &_EFI_FRU_INTERFACE::HasBoardArea, &_EFI_FRU_INTERFACE::HasProductArea,
                           &_EFI_FRU_INTERFACE::HasMultiRecordArea};
        const wchar_t* const names[] = {L"T7", L"T4", L"T5", L"T6", L"T8"};
        for (int area = 0; area < 5; ++area)
            if (mask >> area & 1)
                fru.*areas[area] = rich.*areas[area];
        ASSERT_EQ(Load(FruText(fru)), 0U);
        unsigned int position = 0;
        for (int area = 0; area < 5; ++area) {
            const bool isPresent = mask >> area & 1;
            EXPECT_EQ((m_table->*has[area])(m_table, g_flag), 0U);
            EXPECT_EQ(g_flag, isPresent);
            if (!isPresent)
                continue;
            EXPECT_EQ(m_table->SelectAreaInteger(m_table, position++), 0U);
            EXPECT_EQ(m_table->GetAreaName(m_table, g_text), 0U);
            EXPECT_STREQ(g_text, names[area]);
        }
        EXPECT_EQ(m_table->GetNumberOfAreas(m_table, g_number), 0U);
        EXPECT_EQ(g_number, position);
        EXPECT_EQ(m_table->SelectAreaInteger(m_table, position), FRU_STATUS_NO_SUCH_FIELD);
    }
}

TEST_F(CCursorTest, FieldsTitlesAndSelectorsOfEveryArea) {
    const struct {
        FRU_AREA area;
        unsigned int fields;
        int firstSelector, fixedFields, firstTitle;
    } rows[] = {{FRU_AREA_INTERNAL_USE, 1, 1, 1, 9},
                {FRU_AREA_CHASSIS, 4, 2, 3, 10},
                {FRU_AREA_BOARD, 9, 5, 6, 14},
                {FRU_AREA_PRODUCT, 8, 11, 7, 21}};
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    for (const auto& row : rows) {
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, row.area), 0U);
        EXPECT_EQ(m_table->GetNumberOfFields(m_table, g_number), 0U);
        EXPECT_EQ(g_number, row.fields);
        for (unsigned int field = 0; field < row.fields; ++field) {
            const int fixed = std::min(static_cast<int>(field), row.fixedFields);
            if (fixed < row.fixedFields)
                EXPECT_EQ(m_table->SelectFieldEnum(m_table, static_cast<FRU_FIELD>(row.firstSelector + fixed)), 0U);
            else
                EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
            EXPECT_EQ(m_table->GetFieldTitle(m_table, g_text), 0U);
            EXPECT_EQ(g_text, L"T" + std::to_wstring(row.firstTitle + fixed)) << row.area << "/" << field;
        }
    }
}

TEST_F(CCursorTest, AreasWithoutFieldsOrBytesRefuse) {
    const struct {
        FRU_AREA area;
        OPERATION operation;
    } rows[] = {
        {FRU_AREA_COMMON_HEADER, ROW("D", L"T125", GetAreaName, g_text)},
        {FRU_AREA_COMMON_HEADER, ROW("D", L"T125", GetNumberOfFields, g_number)},
        {FRU_AREA_COMMON_HEADER, ROW("C", L"T125", GetFieldTitle, g_text)},
        {FRU_AREA_COMMON_HEADER, ROW("U", L"T126", SelectFieldEnum, FRU_FIELD_BOARD_FILE_ID)},
        {FRU_AREA_COMMON_HEADER, ROW("0", L"", GetMaxFieldSize, g_number)},
        {FRU_AREA_COMMON_HEADER, ROW("U", L"T125", GetAreaSize, g_number)},
        {FRU_AREA_COMMON_HEADER, ROW("U", L"T125", SetAreaData, g_buffer, 8)},
        {FRU_AREA_MULTIRECORD, ROW("0", L"", GetNumberOfFields, g_number)},
        {FRU_AREA_MULTIRECORD, ROW("U", L"T126", SelectFieldInteger, 0)},
        {FRU_AREA_MULTIRECORD, ROW("U", L"T126", GetMaxFieldSize, g_number)},
        {FRU_AREA_INTERNAL_USE, ROW("U", L"T126", GetMaxFieldSize, g_number)},
        {FRU_AREA_INTERNAL_USE, ROW("U", L"T126", GetFieldDataValue, g_data, g_number)},
        {FRU_AREA_INTERNAL_USE, ROW("U", L"T126", SetFieldDataValue, g_bytes, 4)},
        {FRU_AREA_CHASSIS, ROW("D", L"T135", SelectFieldEnum, FRU_FIELD_BOARD_MFG_DATE_TIME)},
    };
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    for (const auto& [area, operation] : rows) {
        EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
        m_table->SelectFieldInteger(m_table, 0);
        LastError();
        EXPECT_EQ(operation.call(m_table), StatusOf(operation.statuses[0])) << area << operation.name;
        EXPECT_EQ(LastError(), operation.message) << area << operation.name;
    }
}

TEST_F(CCursorTest, PropertiesHaveACursorOfTheirOwn) {
    EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
    EXPECT_EQ(m_table->GetNumberOfProperties(m_table, g_number), 0U);
    EXPECT_EQ(g_number, 3U);
    EXPECT_EQ(m_table->GetPropertyTitle(m_table, g_text), FRU_STATUS_NOT_SELECTED);
    const wchar_t* const expected[][2] = {{L"T29", L"T32"}, {L"T30", L"0"}, {L"T31", L"0"}};
    for (unsigned int property = 0; property < 3; ++property) {
        EXPECT_EQ(m_table->SelectProperty(m_table, property), 0U);
        EXPECT_EQ(m_table->GetPropertyTitle(m_table, g_text), 0U);
        EXPECT_STREQ(g_text, expected[property][0]);
        EXPECT_EQ(m_table->GetPropertyValue(m_table, g_text), 0U);
        EXPECT_STREQ(g_text, expected[property][1]);
    }
    EXPECT_EQ(m_table->SelectProperty(m_table, 3), FRU_STATUS_NO_SUCH_FIELD);
    EXPECT_EQ(m_table->GetPropertyValue(m_table, g_text), FRU_STATUS_NOT_SELECTED);
}

TEST_F(CCursorTest, MisuseEndsTheProcess) {
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    EXPECT_DEATH(m_table->SaveConfigurationToFile(m_table, nullptr, nullptr), "assertion failed: pFileName\n");
    EXPECT_DEATH(m_table->SaveConfigurationToFile(m_table, L"a", L"b"), "assertion failed: !pAuxFileName\n");
    EXPECT_DEATH(m_table->LoadConfigurationFromFile(m_table, nullptr, nullptr), "assertion failed: pFileName\n");
    EXPECT_DEATH(m_table->AddFruToSystemList(m_table), "assertion failed");
    const struct {
        FRU_AREA area;
        const char* file;
    } rows[] = {{FRU_AREA_INTERNAL_USE, "internalusearea"},
                {FRU_AREA_BOARD, "boardinfoarea"},
                {FRU_AREA_PRODUCT, "productinfoarea"}};
    for (const auto& row : rows) {
        m_table->SelectAreaEnum(m_table, row.area);
        EXPECT_ASSERTION(m_table->SelectFieldEnum(m_table, FRU_FIELD_CHASSIS_TYPE), row.file, "0");
    }
}

} // namespace
} // namespace Frudata_Tests
