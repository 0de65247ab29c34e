// The way of a host from the device to the texts of its fields, in both lists; and the system properties.
#include "tests/system/support.h"

#include "frudata/debug.h"
#include "frudata/sdrscan.h"
#include "sim/sdrrecords.h"
#include "tests/support/tracelog.h"

#include <sstream>

using namespace Frudata_Tests;

namespace {

using testing::ElementsAre;

class CTableTest : public CSystemTest {
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
                texts.back() += L"|" + std::wstring(text);
            }
        }
        return texts;
    }
};

TEST_F(CTableTest, LoadsAndWalks) {
    // A rack mount chassis has no name that could be shown; an expansion chassis has.
    BYTES image = SampleBmcFru();
    const std::size_t chassisEnd = Start(image, CHASSIS) + InfoArea(image, CHASSIS).size() - 1;
    image[Start(image, CHASSIS) + 2] = 0x12;
    image[chassisEnd] = static_cast<UINT8>(image[chassisEnd] + 0x17 - 0x12);
    // A BMC without FRU devices makes an empty list.
    EXPECT_EQ(m_table->LoadConfigurationFromSystem(m_table), 0U);
    EXPECT_EQ(LastError(), Text(109, Identifier({}).c_str()));
    EXPECT_EQ(NumberOfFrus(), 0U);
    EXPECT_THAT(g_progress, ElementsAre());
    m_bmc.AddFruDevice(0, image);
    Requests();
    EXPECT_EQ(m_table->LoadConfigurationFromSystem(m_table), 0U);
    EXPECT_EQ(Requests(), Load({}, ACCESS::FRU, image));
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
    EXPECT_EQ(LastError(), L"");
}

TEST_F(CTableTest, TheSamePlaceInEachListIsAnotherFru) {
    ASSERT_EQ(LoadImage(SampleRiserFru()), 0U);
    Select(0);
    ASSERT_EQ(m_table->SaveConfigurationToFile(m_table, L"riser.fru", nullptr), 0U);
    ASSERT_EQ(Set(FRU_AREA_BOARD, FRU_FIELD_BOARD_SERIAL_NUMBER, "X1"), 0U);
    ASSERT_EQ(m_table->LoadConfigurationFromFile(m_table, L"riser.fru", nullptr), 0U);
    for (const int list : {FRU_LIST_FILE, FRU_LIST_SYSTEM, FRU_LIST_FILE}) {
        ASSERT_EQ(m_table->SelectList(m_table, list), 0U);
        ASSERT_EQ(m_table->SelectFru(m_table, 0), 0U);
        const std::vector<std::wstring> texts = Walk();
        EXPECT_EQ(texts[0].find(L"|X1|") != std::wstring::npos, list == FRU_LIST_SYSTEM);
    }
}

// With the session of a FRU text file in the library's tests, this is every operation that a host can succeed with.
TEST_F(CTableTest, ASessionLeavesWhatItEnters) {
    BYTES image = IMAGE;
    m_bmc.AddSdr(LogicalFruRecord(0x20, 0, 1, "PSU 1"));
    m_bmc.AddSdr(ControllerRecord(0xC0, 0, 0x29, "HSC"));
    LIBDBG_DEBUG_LEVEL = 3;
    TakeLog();
    EXPECT_EQ(LoadImage(image), 0U);
    EXPECT_EQ(Find({}), 0U);
    Select(0);
    EXPECT_EQ(Set(FRU_AREA_PRODUCT, FRU_FIELD_PRODUCT_ASSET_TAG, "A1"), 0U);
    UINT8 records[1024];
    unsigned int length = sizeof records;
    EXPECT_EQ(m_table->SelectAreaEnum(m_table, FRU_AREA_MULTIRECORD), 0U);
    EXPECT_EQ(m_table->GetAreaData(m_table, records, length), 0U);
    EXPECT_EQ(m_table->SetAreaData(m_table, records, length), 0U);
    EXPECT_EQ(CommitIt(), 0U);
    EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
    OrderedList<FRU_LOCATOR*> list;
    OrderedList<FRU_LOCATOR*>* argument = &list;
    EXPECT_EQ(ScanSystemForFruLocators(argument), 0U);
    EXPECT_EQ(list.Count(), 2U);
    while (FRU_LOCATOR* const first = list.First())
        delete list.Remove(first);
    LIBDBG_DEBUG_LEVEL = 1;
    // No name is what SetName calls a failure, and loading does not.
    std::string log = TakeLog();
    const std::string nameless = "FRU_LOCATOR::SetName [ENTRY]\r\nCFru::ReadFruFromSystem";
    ASSERT_NE(log.find(nameless), std::string::npos);
    log.erase(log.find(nameless), nameless.find("CFru"));
    const std::set<std::string> names = BalancedOperations(log);
    for (const char* const name :
         {"LoadFromSystem",        "ReadFruFromSystem",     "ReadFRUHeader",      "GetCommonHeader",
          "GetTypeLengthArea",     "GetBoardArea",          "GetProductArea",     "GetChassisArea",
          "GetFRUInternalData",    "GetInternalArea",       "GetMultiRecLength",  "ReadMultiRecord",
          "GetMultiRecArea",       "CheckMultiRecCheckSum", "ReadFruDataFromBmc", "ReadDataFromFRU",
          "WriteFruDataToBmc",     "WriteFruData",          "WriteToSystem",      "SetMultiRecArea",
          "SerializeMultiRecArea", "CalculateChecksum"})
        EXPECT_EQ(names.count(std::string("CFru::") + name), 1U) << name;
    for (const char* const name :
         {"InitializeFruProperties", "GetIPMIRevision", "ScanSystemForFruLocators", "InitSDRStruct", "GetAllSDRRecs",
          "CountIPMI15SDRTypes", "SDR_MEM_Alloc", "ReadRecFromBMC", "DecodeSDR", "DecodeHeader", "DecodeSDRType11V15",
          "DecodeSDRType12V15", "CreateLocatorList", "FindFruAtAddressAndChecksumHeader"})
        EXPECT_EQ(names.count(std::string("FruData::") + name), 1U) << name;
}

TEST_F(CTableTest, Properties) {
    const auto expect = [this](unsigned int version) {
        Requests();
        EXPECT_EQ(m_table->LoadPropertiesFromSystem(m_table), 0U);
        EXPECT_EQ(Requests(), GET_DEVICE_ID);
        const wchar_t* text = nullptr;
        // Both counts are that of the listed FRU devices, of which there are none.
        for (const auto& [index, value] : {std::pair(0U, Format(version)), {1U, L"0"}, {2U, L"0"}}) {
            EXPECT_EQ(m_table->SelectProperty(m_table, index), 0U);
            EXPECT_EQ(m_table->GetPropertyTitle(m_table, text), 0U);
            EXPECT_EQ(text, Format(29 + index));
            EXPECT_EQ(m_table->GetPropertyValue(m_table, text), 0U);
            EXPECT_EQ(text, value);
        }
    };
    ASSERT_EQ(LoadImage(SampleRiserFru()), 0U);
    for (const auto& [version, id] : {std::pair(UINT8{0x51}, 32U), {0x00, 32U}, {0x01, 33U}}) {
        m_bmc.SetIdentity({.ipmiVersion = version});
        expect(id);
    }
    LIBDBG_DEBUG_LEVEL = 3;
    TakeLog();
    expect(33);
    std::string expected;
    for (const char* const operation : {"SetNumberOfFrus", "SetNumberOfIpmiFrus", "SetIpmiVersion", "SetNumberOfFrus",
                                        "SetNumberOfIpmiFrus", "GetIpmiVersion", "SetIpmiVersionString",
                                        "GetIpmiVersionString", "GetNumberOfFrusString", "GetNumberOfIpmiFrusString"})
        for (const char* const end : {" [ENTRY]\r\n", " [EXIT]\r\n"})
            expected += std::string("CFruProperties::") + operation + end;
    std::istringstream log(TakeLog());
    std::string traced;
    for (std::string line; std::getline(log, line);)
        traced += line.starts_with("CFruProperties") ? line + "\n" : "";
    EXPECT_EQ(traced, expected);
    LIBDBG_DEBUG_LEVEL = 1;
    // Neither the status nor the completion code counts, only what came as the fifth byte.
    for (const FAULT_ACTION action : {FAULT_ACTION::TRANSPORT_ERROR, FAULT_ACTION::SHORT_ANSWER}) {
        m_bmc.ClearFaults();
        m_bmc.AddFault({.action = action, .value = 0x0B});
        expect(32);
    }
    m_bmc.SetScript([](const IpmiRequest&) {
        return std::optional(IpmiAnswer{.completionCode = 0xC1, .data = {0, 0, 0, 0, 0x01}});
    });
    expect(33);
}

} // namespace
