// The function table's operations at every position of the cursor.
#include "support.h"

#include <climits>

namespace Frudata_Tests {
namespace {

using TABLE = _EFI_FRU_INTERFACE*;

// The states, each of which has what those before it have.
constexpr int UNINITIALISED = 0, NOTHING_LOADED = 1, NO_LIST = 2, NO_FRU = 3, NO_AREA = 4, NO_FIELD = 5,
              FIELD_SELECTED = 6;

struct OPERATION {
    const char* name;
    EFI_STATUS (*call)(TABLE table);
};

#define CALL(operation, ...)                                                                                           \
    OPERATION {                                                                                                        \
#operation, [](TABLE table) { return table->operation(table __VA_OPT__(, ) __VA_ARGS__); }                     \
    }

const UINT8 g_bytes[] = {'a', 'b', 0, 'd'};
bool g_flag;
unsigned int g_number, g_other;
const wchar_t* g_text;
const UINT8* g_data;
UINT8 g_byte, g_buffer[64];
UINT16 g_word;
FRU_TYPE g_type;

struct ROW {
    template <typename... OPERATIONS> ROW(const char* states, const wchar_t* text, OPERATIONS... calls)
        : statuses(states), message(text), operations{calls...} {}
    const char* statuses;   // one column a state: '0' success, else the status's last digits, 'U' 0x30, '8' 0x28
    const wchar_t* message; // unless NOT_LOADED or NOT_SELECTED, whose text is 125
    std::vector<OPERATION> operations;
};

const ROW g_operations[] = {
    ROW("0000000", L"", CALL(SetLanguageLocale, L"en", L"us"), CALL(SetDisplayCallback, nullptr),
        CALL(SetPwd, g_bytes, 0)),
    ROW("5000000", L"", CALL(LoadConfigurationFromFile, L"in.fru", L"ignored"), CALL(IsLoaded, g_flag),
        CALL(GetLastErrorMessage, g_text), CALL(SetProgressCallback, nullptr), CALL(SetProgressCallbackInterval, 0),
        CALL(SetDebugLevel, 1), CALL(LoadPropertiesFromSystem)),
    ROW("5000000", L"T109 T134 0 32 32 255", CALL(LoadConfigurationFromSystem)),
    ROW("5777777", L"T89 gone.fru", CALL(LoadConfigurationFromFile, L"gone.fru", nullptr)),
    ROW("5888888", L"T109 T134 2 4 3 5", CALL(LoadFruAtAddress, FRU_TYPE_NONE, 1, 3, 5, 4, 2, 6, 7)),
    ROW("5888888", L"T123", CALL(FindFruAtAddressAndChecksumHeader, FRU_TYPE_NONE, 0, 0, 0, 0, 0)),
    ROW("5BDDDDD", L"T125", CALL(CommitConfigurationToSystem), CALL(SelectList, 0), CALL(SelectList, 3)),
    ROW("5B00000", L"", CALL(IsModified, g_flag), CALL(SelectList, FRU_LIST_SYSTEM), CALL(GetAssetTagLength, g_number)),
    ROW("5BC0000", L"", CALL(GetNumberOfFrus, g_number, g_other), CALL(SelectFru, 0),
        CALL(SelectFruByAddress, FRU_TYPE_IMBDEVICE, 1, 0x3C, 0xFF, 0x20, 5, 77, 7777)),
    ROW("5BCDDDD", L"T125", CALL(SelectFru, 1)),
    ROW("5BCDDDD", L"T101", CALL(SelectFruByAddress, FRU_TYPE_IMBDEVICE, 0, 0x3C, 0xFF, 0x20, 5, 255, 0)),
    ROW("5BCC000", L"", CALL(SaveConfigurationToFile, L"out.fru", nullptr), CALL(GetFruName, g_text),
        CALL(GetFruAddress, g_type, g_byte, g_byte, g_byte, g_byte, g_byte, g_byte, g_word),
        CALL(HasInternalUseArea, g_flag), CALL(HasBoardArea, g_flag), CALL(HasProductArea, g_flag),
        CALL(HasChassisArea, g_flag), CALL(HasMultiRecordArea, g_flag), CALL(GetNumberOfAreas, g_number),
        CALL(SelectAreaEnum, FRU_AREA_BOARD), CALL(SelectAreaEnum, FRU_AREA_CHASSIS), CALL(SelectAreaInteger, 0)),
    ROW("5BCCDDD", L"T125", CALL(SelectAreaEnum, FRU_AREA_NONE), CALL(SelectAreaEnum, static_cast<FRU_AREA>(7)),
        CALL(SelectAreaInteger, 1)),
    ROW("5BCCC00", L"", CALL(GetAreaName, g_text), CALL(GetNumberOfFields, g_number), CALL(GetMaxFieldSize, g_number),
        CALL(SelectFieldEnum, FRU_FIELD_BOARD_FILE_ID), CALL(SelectFieldInteger, 8)),
    ROW("5BCCCDD", L"T135", CALL(SelectFieldInteger, 9)),
    ROW("5BCCCC0", L"", CALL(GetFieldTitle, g_text), CALL(GetFieldStringValue, g_text),
        CALL(GetFieldDataValue, g_data, g_number), CALL(SetFieldDataValue, g_bytes, 2)),
    ROW("5BCCCUU", L"T125", CALL(GetAreaData, g_buffer, g_number), CALL(SetAreaData, g_bytes, 4),
        CALL(GetAreaSize, g_number)),
    ROW("5BBBBBB", L"", CALL(GetNumberOfProperties, g_number), CALL(SelectProperty, 0), CALL(GetPropertyTitle, g_text),
        CALL(GetPropertyValue, g_text))};

EFI_STATUS StatusOf(char digit) {
    if (digit == '0' || digit == 'U' || digit == '8')
        return digit == '0' ? 0 : digit == 'U' ? FRU_STATUS_UNSUPPORTED : FRU_STATUS_READ_FRU_ERROR;
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
    for (const auto& [statuses, message, operations] : g_operations)
        for (const OPERATION& operation : operations)
            for (int state = 0; state <= FIELD_SELECTED; ++state) {
                SCOPED_TRACE(std::string(operation.name) + " in state " + std::to_string(state));
                Enter(state);
                TakeLog();
                const char digit = statuses[state];
                EXPECT_EQ(operation.call(m_table), StatusOf(digit));
                const bool isUnexpected = digit == 'B' || digit == 'C';
                const std::string log = TakeLog();
                EXPECT_EQ(isUnexpected ? log : "",
                          isUnexpected ? std::string("FruData::") + operation.name + " - Unexpected\r\n" : "");
                EXPECT_EQ(LastError(), isUnexpected ? L"T125" : digit == '5' ? L"" : message);
                EXPECT_EQ(LastError(), L"");
            }
}

TEST_F(CCursorTest, FailedSelectionsClearWhatWasSelected) {
    const std::tuple<int, char, OPERATION> rows[] = {
        // what is left: 3: no FRU, 4: a FRU, 5: a FRU and an area
        {3, 'D', CALL(SelectFru, 1)},
        {3, 'D', CALL(SelectFruByAddress, FRU_TYPE_AT24CO2, 1, 0x3C, 0xFF, 0x20, 5, 255, 0)},
        {4, 'D', CALL(SelectAreaEnum, static_cast<FRU_AREA>(-1))},
        {4, '0', CALL(SelectAreaEnum, FRU_AREA_MULTIRECORD)},
        {4, 'D', CALL(SelectAreaInteger, 1)},
        {4, '0', CALL(SelectFru, 0)},
        {5, '0', CALL(SelectAreaInteger, 0)},
        {5, 'D', CALL(SelectFieldInteger, 99)},
    };
    for (const auto& [levelLeft, status, selection] : rows) {
        SCOPED_TRACE(selection.name);
        Enter(FIELD_SELECTED);
        EXPECT_EQ(selection.call(m_table), StatusOf(status));
        EXPECT_EQ(m_table->GetFruName(m_table, g_text) == 0, levelLeft >= 4);
        EXPECT_EQ(m_table->GetAreaName(m_table, g_text) == 0, levelLeft >= 5);
        EXPECT_EQ(m_table->GetFieldTitle(m_table, g_text), FRU_STATUS_NOT_SELECTED);
    }
}

TEST_F(CCursorTest, FrusAreAppendedAndTheFirstOfTwoEqualAddressesWins) {
    ASSERT_EQ(Load(WithLine(FruText(BoardFru()), "_FRU_TITLE", "_FRU_TITLE 'First'")), 0U);
    ASSERT_EQ(Load(WithLine(FruText(BoardFru()), "_FRU_TITLE", "_FRU_TITLE 'Second'")), 0U);
    EXPECT_STREQ(Told(m_table->GetFruName), L"Second");
    for (int part = 0; part <= 6; ++part) {
        UINT8 address[7] = {2, 1, 0x3C, 0xFF, 0x20, 5};
        ++address[part]; // of the seventh on, nothing must match
        EXPECT_EQ(m_table->SelectFruByAddress(m_table, static_cast<FRU_TYPE>(address[0]), address[1], address[2],
                                              address[3], address[4], address[5], address[6], 0),
                  part < 6 ? FRU_STATUS_NO_SUCH_FIELD : 0U)
            << part;
    }
    EXPECT_STREQ(Told(m_table->GetFruName), L"First");
    for (const auto& [list, count] : {std::pair(FRU_LIST_FILE, 2U), {FRU_LIST_SYSTEM, 0U}}) {
        m_table->SelectList(m_table, list);
        EXPECT_EQ(m_table->GetNumberOfFrus(m_table, g_number, g_other), 0U);
        EXPECT_TRUE(g_number == count && g_other == count) << list;
    }
    EXPECT_EQ(m_table->SelectFru(m_table, 0), FRU_STATUS_NO_SUCH_FIELD);
}

TEST_F(CCursorTest, PresentAreasAreNumberedInAFixedOrder) {
    const std::tuple<BYTES FRU_BYTES::*, decltype(_EFI_FRU_INTERFACE::HasBoardArea), const wchar_t*> areas[] = {
        {&FRU_BYTES::internalUse, m_table->HasInternalUseArea, L"T7"},
        {&FRU_BYTES::chassis, m_table->HasChassisArea, L"T4"},
        {&FRU_BYTES::board, m_table->HasBoardArea, L"T5"},
        {&FRU_BYTES::product, m_table->HasProductArea, L"T6"},
        {&FRU_BYTES::multiRecord, m_table->HasMultiRecordArea, L"T8"}};
    for (unsigned int mask = 0; mask < 32; ++mask) {
        FRU_BYTES fru = RichFru();
        std::vector<std::wstring> expected, found;
        for (int area = 0; area < 5; ++area)
            if (mask >> area & 1)
                expected.push_back(std::get<2>(areas[area]));
            else
                (fru.*std::get<0>(areas[area])).clear();
        ASSERT_EQ(Load(FruText(fru)), 0U);
        for (const auto& [bytes, has, name] : areas)
            EXPECT_EQ(Told(has), !(fru.*bytes).empty()) << mask;
        while (m_table->SelectAreaInteger(m_table, static_cast<unsigned int>(found.size())) == 0)
            found.push_back(Told(m_table->GetAreaName));
        EXPECT_EQ(found, expected);
        EXPECT_EQ(Told(m_table->GetNumberOfAreas), expected.size());
    }
}

TEST_F(CCursorTest, AreasWithoutFieldsOrBytesRefuse) {
    const std::tuple<FRU_AREA, char, const wchar_t*, std::vector<OPERATION>> rows[] = {
        {FRU_AREA_COMMON_HEADER, 'D', L"T125", {CALL(GetAreaName, g_text), CALL(GetNumberOfFields, g_number)}},
        {FRU_AREA_COMMON_HEADER, 'C', L"T125", {CALL(GetFieldTitle, g_text)}},
        {FRU_AREA_COMMON_HEADER, 'U', L"T126", {CALL(SelectFieldEnum, FRU_FIELD_BOARD_FILE_ID)}},
        {FRU_AREA_COMMON_HEADER, '0', L"", {CALL(GetMaxFieldSize, g_number)}},
        {FRU_AREA_COMMON_HEADER, 'U', L"T125", {CALL(GetAreaSize, g_number), CALL(SetAreaData, g_buffer, 8)}},
        {FRU_AREA_MULTIRECORD, '0', L"", {CALL(GetNumberOfFields, g_number)}},
        {FRU_AREA_MULTIRECORD, 'U', L"T126", {CALL(SelectFieldInteger, 0), CALL(GetMaxFieldSize, g_number)}},
        {FRU_AREA_INTERNAL_USE,
         'U',
         L"T126",
         {CALL(GetMaxFieldSize, g_number), CALL(GetFieldDataValue, g_data, g_number),
          CALL(SetFieldDataValue, g_bytes, 4)}},
        {FRU_AREA_CHASSIS,
         'D',
         L"T135",
         {CALL(SelectFieldEnum, FRU_FIELD_BOARD_MFG_DATE_TIME), CALL(SelectFieldEnum, static_cast<FRU_FIELD>(INT_MIN)),
          CALL(SelectFieldEnum, static_cast<FRU_FIELD>(INT_MAX))}},
    };
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    for (const auto& [area, status, message, operations] : rows)
        for (const OPERATION& operation : operations) {
            EXPECT_EQ(m_table->SelectAreaEnum(m_table, area), 0U);
            m_table->SelectFieldInteger(m_table, 0);
            LastError();
            EXPECT_EQ(operation.call(m_table), StatusOf(status)) << area << operation.name;
            EXPECT_EQ(LastError(), message) << area << operation.name;
        }
}

TEST_F(CCursorTest, AFailedQueryOfAPropertyWritesNothing) {
    const WCHAR* text = L"untouched";
    for (const bool areLoaded : {false, true}) {
        if (areLoaded) {
            EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
        }
        for (const auto operation : {m_table->GetPropertyTitle, m_table->GetPropertyValue}) {
            EXPECT_EQ(operation(m_table, text), areLoaded ? FRU_STATUS_NOT_SELECTED : FRU_STATUS_NOT_LOADED);
            EXPECT_STREQ(text, L"untouched");
        }
    }
    EXPECT_EQ(Told(m_table->GetNumberOfProperties), 3U);
    EXPECT_EQ(m_table->SelectProperty(m_table, 2), 0U);
    EXPECT_STREQ(Told(m_table->GetPropertyTitle), L"T31");
    EXPECT_EQ(m_table->SelectProperty(m_table, 3), FRU_STATUS_NO_SUCH_FIELD);
    EXPECT_EQ(m_table->GetPropertyTitle(m_table, text), FRU_STATUS_NOT_SELECTED) << "a failed selection leaves none";
}

TEST_F(CCursorTest, MisuseEndsTheProcess) {
    const std::pair<OPERATION, const char*> rows[] = {
        {CALL(SaveConfigurationToFile, nullptr, nullptr), "pFileName\n"},
        {CALL(SaveConfigurationToFile, L"a", L"b"), "!pAuxFileName\n"},
        {CALL(LoadConfigurationFromFile, nullptr, nullptr), "pFileName\n"},
        {CALL(AddFruToSystemList), ""}};
    ASSERT_EQ(Load(FruText(RichFru())), 0U);
    for (const auto& [operation, condition] : rows)
        EXPECT_DEATH(operation.call(m_table), std::string("assertion failed: ") + condition);
    for (const auto& [area, file] : {std::pair(FRU_AREA_INTERNAL_USE, "internalusearea"),
                                     {FRU_AREA_BOARD, "boardinfoarea"},
                                     {FRU_AREA_PRODUCT, "productinfoarea"}}) {
        m_table->SelectAreaEnum(m_table, area);
        EXPECT_ASSERTION(m_table->SelectFieldEnum(m_table, FRU_FIELD_CHASSIS_TYPE), file, "0");
    }
}

} // namespace
} // namespace Frudata_Tests
