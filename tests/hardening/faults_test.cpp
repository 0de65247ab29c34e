// Everything that a BMC can do wrong, at every request that the library makes, and power cuts.
#include "support.h"

#include "frudata/bmclib.h"
#include "frudata/sdrscan.h"

#include <algorithm>

namespace Frudata_Tests {
namespace {

/// Kinds of damage, by what they may lead to.
enum SEVERITY {
    HARMLESS, ///< the operation succeeds
    ANY,      ///< it succeeds, fails, or the damage shows in a checksum, which is an assertion
    FATAL,    ///< it fails where the fault persists
    BUSY      ///< it goes on when the fault ends, and must not meet one that persists: asking is without limit
};

struct FAULT {
    FAULT_ACTION action;
    UINT16 value;
    SEVERITY severity;
};

constexpr FAULT FAULTS[] = {
    {FAULT_ACTION::TRANSPORT_ERROR, 7, FATAL},     {FAULT_ACTION::SILENCE, 0, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0x01, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0x80, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0x81, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0x83, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xC1, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0xC2, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xC3, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0xC5, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xC7, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0xC8, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xC9, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0xCA, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xCB, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0xCC, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xCE, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0xD3, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xD4, FATAL},  {FAULT_ACTION::COMPLETION_CODE, 0xD5, FATAL},
    {FAULT_ACTION::COMPLETION_CODE, 0xFF, FATAL},  {FAULT_ACTION::SHORT_ANSWER, 1, ANY},
    {FAULT_ACTION::SHORT_ANSWER, 2, ANY},          {FAULT_ACTION::SHORT_ANSWER, 300, ANY},
    {FAULT_ACTION::LONG_ANSWER, 1, ANY},           {FAULT_ACTION::LONG_ANSWER, 300, ANY},
    {FAULT_ACTION::LONG_ANSWER, 0xFFFF, ANY},      {FAULT_ACTION::DROP_WRITE, 0, HARMLESS},
    {FAULT_ACTION::ACKNOWLEDGE_NONE, 0, HARMLESS}, {FAULT_ACTION::NEXT_RECORD, 0, ANY},
    {FAULT_ACTION::NEXT_RECORD, 0x7777, ANY},      {FAULT_ACTION::WRONG_SEQUENCE, 0, ANY},
    {FAULT_ACTION::STALE_MESSAGES, 3, HARMLESS},   {FAULT_ACTION::STALE_MESSAGES, 16, ANY},
    {FAULT_ACTION::COMPLETION_CODE, 0xC0, BUSY},
};

class CFaultsTest : public CHardeningTest {
  protected:
    /// Lets `operate` meet each fault, once and persisting, at each request. `prepare` runs on a good server
    /// before, `check` after it: it throws where the library is not as it should be. Then all must work again.
    template <typename PREPARE, typename OPERATE, typename CHECK>
    void Campaign(const std::string& title, PREPARE prepare, OPERATE operate, CHECK check) {
        prepare();
        m_bmc->SetRecording(true);
        const EFI_STATUS good = operate();
        const auto requests = static_cast<unsigned int>(m_bmc->Exchanges().size());
        ASSERT_GT(requests, 0U);
        const auto runs = static_cast<unsigned int>(requests * std::size(FAULTS) * 2);
        RunInChildren(title, runs, [&](unsigned int run) {
            const unsigned int number = run / 2 % static_cast<unsigned int>(std::size(FAULTS));
            const FAULT& fault = FAULTS[number];
            const bool persists = run % 2 == 1 && fault.severity != BUSY;
            prepare();
            m_bmc->AddFault({.action = fault.action,
                             .value = fault.value,
                             .occurrence = 1 + run / 2 / static_cast<unsigned int>(std::size(FAULTS)),
                             .times = persists ? FaultRule::FOR_EVER : 1});
            const EFI_STATUS status = operate();
            const std::string what = "fault " + std::to_string(number) + ": " + StatusText(status);
            Require(!(fault.severity == FATAL && persists) || status != good, what + " although nothing works");
            Require(fault.severity != HARMLESS || status == good, what + " although nothing is wrong");
            check(status);
            prepare();
            Require(operate() == good, what + ", and the library no longer works");
        });
    }

    void Restart() {
        RenewServer();
        m_table->DeInitialize(m_table);
        m_table->Initialize(m_table, 0);
    }
};

class CDeviceFaultsTest : public CFaultsTest, public testing::WithParamInterface<DEVICE> {};

TEST_P(CDeviceFaultsTest, Load) {
    static constexpr EFI_STATUS DOCUMENTED[] = {FRU_STATUS_SUCCESS,
                                                FRU_STATUS_NOT_IPMI_FRU,
                                                FRU_STATUS_CHECKSUM_ERROR,
                                                FRU_STATUS_READ_FRU_ERROR,
                                                FRU_STATUS_INVALID_BOARD_AREA,
                                                FRU_STATUS_INVALID_PRODUCT_AREA,
                                                FRU_STATUS_INVALID_CHASSIS_AREA,
                                                FRU_STATUS_INVALID_INTERNAL_AREA,
                                                FRU_STATUS_INVALID_MULTIREC_AREA,
                                                1,
                                                7,
                                                static_cast<EFI_STATUS>(BMCLIB_ERR_RETRIES)};
    std::string before;
    Campaign(
        std::string("load, ") + GetParam().name,
        [&] {
            Restart();
            Load(EEPROM_DEVICE);
            Select(0);
            before = Snapshot();
        },
        [&] { return Load(GetParam()); },
        [&](EFI_STATUS status) {
            Require(std::count(std::begin(DOCUMENTED), std::end(DOCUMENTED), status) == 1, StatusText(status));
            Require(NumberOfFrus() == (status == 0 ? 2U : 1U), "the list is wrong");
            Select(0);
            Require(Snapshot() == before, "another image has changed");
        });
}

TEST_P(CDeviceFaultsTest, Commit) {
    std::string before;
    Campaign(
        std::string("commit, ") + GetParam().name,
        [&] {
            Restart();
            Load(GetParam());
            Select(0);
            EditAll();
            before = Snapshot();
        },
        [&] { return m_table->CommitConfigurationToSystem(m_table); },
        [&](EFI_STATUS status) {
            Require(status == 0 || status == FRU_STATUS_WRITE_FRU_ERROR, StatusText(status));
            Require(Snapshot() == before, "the image in memory has changed");
        });
}

INSTANTIATE_TEST_SUITE_P(Devices, CDeviceFaultsTest, testing::Values(BMC_DEVICE, BRIDGED_DEVICE, EEPROM_DEVICE),
                         [](const auto& device) { return device.param.name; });

TEST_F(CFaultsTest, Scan) {
    Campaign(
        "scan", [this] { Restart(); },
        [] { // The scan has one status: its result is the number of locators.
            OrderedList<FRU_LOCATOR*> list;
            OrderedList<FRU_LOCATOR*>* locators = &list;
            Require(ScanSystemForFruLocators(locators) == 0, "the scan failed");
            const EFI_STATUS count = list.Count();
            while (FRU_LOCATOR* locator = list.First())
                const std::unique_ptr<FRU_LOCATOR> removed(list.Remove(locator));
            return count;
        },
        [](EFI_STATUS count) { Require(count <= 2, "more locators than records"); });
}

TEST_F(CFaultsTest, PowerCut) {
    const auto prepare = [this] {
        Restart();
        Require(Load(BMC_DEVICE) == 0, "the device cannot be loaded");
        Select(0);
        EditAll();
    };
    prepare();
    m_bmc->SetRecording(true);
    ASSERT_EQ(m_table->CommitConfigurationToSystem(m_table), 0U);
    const auto writes = static_cast<unsigned int>(m_bmc->Exchanges().size() - 1); // the first asks for the device id
    const BYTES whole = m_bmc->FruBytes(0);
    ASSERT_NE(whole, FullImage());
    RunInChildren("power cut", writes + 1, [&](unsigned int cut) {
        prepare();
        m_bmc->AddFault({.action = FAULT_ACTION::CUT, .value = static_cast<UINT16>(cut)});
        const EFI_STATUS expected = cut == writes ? FRU_STATUS_SUCCESS : FRU_STATUS_WRITE_FRU_ERROR;
        Require(m_table->CommitConfigurationToSystem(m_table) == expected, "wrong status of the commit");
        m_bmc->ClearFaults();
        Require((m_bmc->FruBytes(0) == whole) == (cut == writes), "wrong bytes on the device");
        Load(BMC_DEVICE); // refused, or an assertion, or loaded: never a crash
    });
}

} // namespace
} // namespace Frudata_Tests
