// A host without an IMB driver on a machine that refuses port access: every operation ends at once.
#include "frudata/frudata.h"
#include "frudata/sdrscan.h"

#include <chrono>
#include <gtest/gtest.h>

// Refused also where the test runs with all privileges.
extern "C" int iopl(int) noexcept {
    return -1;
}

TEST(RefusedPorts, OperationsFailAtOnce) {
    const auto begin = std::chrono::steady_clock::now();
    _EFI_FRU_INTERFACE* const table = GetFruDataInterface();
    ASSERT_EQ(table->Initialize(table, 0), 0U);
    EXPECT_EQ(table->LoadConfigurationFromSystem(table), 0U);
    EXPECT_EQ(table->SelectList(table, FRU_LIST_SYSTEM), 0U);
    EXPECT_EQ(table->SelectFru(table, 0), FRU_STATUS_NO_SUCH_FIELD);
    EXPECT_EQ(table->LoadFruAtAddress(table, FRU_TYPE_IMBDEVICE, 0, 0x20, 0xFF, 0x20, 0, 0, 0), 1U);
    EXPECT_EQ(table->LoadFruAtAddress(table, FRU_TYPE_AT24CO2, 0, 0xA0, 1, 0x20, 0, 0, 0), 1U);
    EXPECT_EQ(table->FindFruAtAddressAndChecksumHeader(table, FRU_TYPE_IMBDEVICE, 0, 0xC0, 0, 0x20, 0),
              static_cast<EFI_STATUS>(-504));
    EXPECT_EQ(table->LoadPropertiesFromSystem(table), 0U);
    OrderedList<FRU_LOCATOR*> list;
    OrderedList<FRU_LOCATOR*>* argument = &list;
    EXPECT_EQ(ScanSystemForFruLocators(argument), 0U);
    EXPECT_EQ(table->DeInitialize(table), 0U);
    EXPECT_EQ(ScanSystemForFruLocators(argument), 0U) << "not started";
    EXPECT_EQ(list.Count(), 0U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}
