// Shared by the hardening tests: a library with a simulated BMC, and runs in child processes, because a
// required assertion may end any of them.
#pragma once

#include "fruimage/imagebuilder.h"
#include "sim/fronts.h"
#include "sim/sdrrecords.h"
#include "tests/support/tablehost.h"

#include <functional>
#include <string>

namespace Frudata_Tests {

using namespace Frudata_Sim;

/// One of the ways to a device.
struct DEVICE {
    const char* name;
    FRU_TYPE type;
    UINT8 address;
    UINT8 bus;
};
inline constexpr DEVICE BMC_DEVICE = {"BMC", FRU_TYPE_IMBDEVICE, 0x20, 0xFF};
inline constexpr DEVICE BRIDGED_DEVICE = {"bridged", FRU_TYPE_IMBDEVICE, 0xC0, 0};
inline constexpr DEVICE EEPROM_DEVICE = {"EEPROM", FRU_TYPE_AT24CO2, 0xA0, 1};

/// A server with one FRU behind each DEVICE and three SDRs.
std::unique_ptr<CSimulatedBmc> MakeServer();
/// All five areas.
BYTES FullImage();

/// A started library in a fresh directory that has the texts.
class CHardeningTest : public CTableHost {
  protected:
    CHardeningTest();
    ~CHardeningTest() override { SetCurrentBmc(nullptr); }

    /// Makes a new server the current one.
    void RenewServer();
    EFI_STATUS Load(const DEVICE& device);
    /// A longer value in every field that the selected FRU has, and another chain of records.
    void EditAll();
    /// All that the selected FRU holds.
    std::string Snapshot();

    std::unique_ptr<CSimulatedBmc> m_bmc;
};

/// Carries out runs 0 to `count` - 1 in children, a new one after each assertion, of which there may be at most
/// `assertions`. `run` throws a std::string that fails the test.
void RunInChildren(const std::string& title, unsigned int count, const std::function<void(unsigned int)>& run,
                   unsigned int assertions = UINT32_MAX);
/// Throws `complaint` unless `holds`.
void Require(bool holds, const std::string& complaint);
std::string StatusText(EFI_STATUS status);

} // namespace Frudata_Tests
