// The whole way of a host: load, walk, edit, commit, load again; and the lists that it meets when a BMC does
// not answer.
#include "tests/system/support.h"

#include "sim/samples.h"

namespace Frudata_Tests {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class Table : public CSystemTest {
  protected:
    /// Area names and field values of the selected FRU. Values of custom fields come from the last one on.
    std::vector<std::wstring> Walk() {
        std::vector<std::wstring> texts;
        unsigned int areas = 0;
        EXPECT_EQ(m_table->GetNumberOfAreas(m_table, areas), 0U);
        for (unsigned int area = 0; area < areas; ++area) {
            const wchar_t* text = nullptr;
            unsigned int fields = 0;
            EXPECT_EQ(m_table->SelectAreaInteger(m_table, area), 0U);
            EXPECT_EQ(m_table->GetAreaName(m_table, text), 0U);
            EXPECT_EQ(m_table->GetNumberOfFields(m_table, fields), 0U);
            texts.push_back(text);
            for (unsigned int field = 0; field < fields; ++field) {
                EXPECT_EQ(m_table->SelectFieldInteger(m_table, field), 0U);
                EXPECT_EQ(m_table->GetFieldStringValue(m_table, text), 0U);
                texts.back() += L"|";
                texts.back() += text;
            }
        }
        return texts;
    }
    bool IsLoaded() {
        bool loaded = false;
        EXPECT_EQ(m_table->IsLoaded(m_table, loaded), 0U);
        return loaded;
    }
};

TEST_F(Table, LoadWalkEditCommitReload) {
    // A rack mount chassis has no name that could be shown; an expansion chassis has.
    BYTES image = SampleBmcFru();
    const std::size_t chassisEnd = Start(image, CHASSIS) + InfoArea(image, CHASSIS).size() - 1;
    image[Start(image, CHASSIS) + 2] = 0x12;
    image[chassisEnd] = static_cast<UINT8>(image[chassisEnd] + 0x17 - 0x12);
    m_bmc.AddFruDevice(0, image);
    ASSERT_EQ(m_table->LoadConfigurationFromSystem(m_table), 0U);
    EXPECT_THAT(Requests(), ElementsAreArray(Load({}, ACCESS::FRU, image)));
    EXPECT_THAT(g_progress, ElementsAre(L"0 " + Text(63, 1U, 0U) + L" 1 0"));
    EXPECT_EQ(NumberOfFrus(), 1U);
    Select(0);
    const wchar_t* name = L"unset";
    EXPECT_EQ(m_table->GetFruName(m_table, name), 0U);
    EXPECT_EQ(name, nullptr);
    EXPECT_THAT(Walk(),
                ElementsAre(L"Internal Use Area|01 10 20 30 40 50 60 70 80 90 A0 B0 00 00 00 00",
                            L"Chassis Info Area|Expansion Chassis|CH-2U-8BAY|CHS1234567|Slot 30|Rack 12",
                            L"Board Info Area|05/31/2021 08:00:00|Northwind|NW-2000 Mainboard|MB00112233|MB-2000-B|"
                            L"mb.fru|Lot 77|MAC 02:00:00:00:00:01",
                            L"Product Info Area|Northwind|NW-2000 Server|NW2000-8|V03|SRV7654321|ASSET-0042|"
                            L"nw2000.fru|Owner B|Contract A",
                            L"MultiRecord Area"));

    EXPECT_EQ(Set(FRU_AREA_CHASSIS, FRU_FIELD_CHASSIS_SERIAL_NUMBER, "CHS7"), 0U);
    EXPECT_EQ(Set(FRU_AREA_BOARD, FRU_FIELD_BOARD_PRODUCT_NAME, "NW-2000 Mainboard, second"), 0U);
    EXPECT_EQ(Set(FRU_AREA_PRODUCT, FRU_FIELD_PRODUCT_ASSET_TAG, "ASSET-0043 moved"), 0U);
    EXPECT_EQ(m_table->CommitConfigurationToSystem(m_table), 0U) << LastError().c_str();
    const BYTES& device = m_bmc.FruBytes(0);
    EXPECT_EQ(Requests(), LINES{Line(0x20, 6, 0, 1, {})} + Writes({}, ACCESS::FRU, 0, Slice(image, 0, 8)) +
                              Writes({}, ACCESS::FRU, Start(image, CHASSIS), InfoArea(device, CHASSIS)) +
                              Writes({}, ACCESS::FRU, Start(image, BOARD), InfoArea(device, BOARD)) +
                              Writes({}, ACCESS::FRU, Start(image, PRODUCT), InfoArea(device, PRODUCT)));
    const std::vector<std::wstring> edited = Walk();

    EXPECT_EQ(LoadAt({}), 0U);
    EXPECT_EQ(NumberOfFrus(), 2U);
    Select(1);
    EXPECT_EQ(Walk(), edited);
    EXPECT_EQ(Value(FRU_AREA_CHASSIS, FRU_FIELD_CHASSIS_SERIAL_NUMBER), L"CHS7");
    EXPECT_EQ(Value(FRU_AREA_BOARD, FRU_FIELD_BOARD_PRODUCT_NAME), L"NW-2000 Mainboard, second");
    EXPECT_EQ(Value(FRU_AREA_PRODUCT, FRU_FIELD_PRODUCT_ASSET_TAG), L"ASSET-0043 moved");
    EXPECT_EQ(LastError(), L"");
}

TEST_F(Table, ABmcThatDoesNotAnswerIsAnEmptyList) {
    EXPECT_EQ(m_table->LoadConfigurationFromSystem(m_table), 0U);
    EXPECT_TRUE(IsLoaded());
    EXPECT_THAT(g_progress, ElementsAre());
    EXPECT_EQ(m_table->SelectList(m_table, FRU_LIST_SYSTEM), 0U);
    EXPECT_EQ(m_table->SelectFru(m_table, 0), FRU_STATUS_NO_SUCH_FIELD);
    EXPECT_EQ(NumberOfFrus(), 0U);
    m_bmc.AddFruDevice(0, CFruImageBuilder().Build(64));
    for (const wchar_t* counts : {L" 1 0", L" 2 0"}) {
        g_progress.clear();
        EXPECT_EQ(m_table->LoadConfigurationFromSystem(m_table), 0U);
        EXPECT_THAT(g_progress, ElementsAre(testing::EndsWith(counts)));
    }
}

TEST_F(Table, ProbingAHeaderLoadsNothing) {
    const BYTES good = CFruImageBuilder().Build(64);
    const std::wstring invalid = Text(109, Identifier({}).c_str());
    const struct {
        const char* name;
        BYTES image;
        EFI_STATUS status;
        std::wstring error;
    } rows[] = {{"good", good, 0, L""},
                {"upper bits of the version", With(good, 0, {0xF1}), 0, L""},
                {"version 2", With(good, 0, {2}), FRU_STATUS_NOT_IPMI_FRU, Text(103)},
                {"checksum", With(good, 7, {0}), FRU_STATUS_CHECKSUM_ERROR, invalid},
                {"too short a device", {1, 0, 0}, FRU_STATUS_READ_FRU_ERROR, Text(123)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_bmc.AddFruDevice(0, row.image);
        EXPECT_EQ(Find({}), row.status);
        EXPECT_EQ(LastError(), row.error);
        EXPECT_THAT(Requests(), ElementsAreArray(Reads({}, ACCESS::FRU, 0, 8)));
    }
    m_bmc.AddFault({.action = FAULT_ACTION::TRANSPORT_ERROR, .value = 9});
    EXPECT_EQ(Find({}), TransportStatus(9));
    EXPECT_EQ(LastError(), Text(123));
    EXPECT_EQ(LoadAt({}), TransportStatus(9));
    EXPECT_FALSE(IsLoaded());
}

} // namespace

} // namespace Frudata_Tests
