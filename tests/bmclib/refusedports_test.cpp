// A host without an IMB driver on a machine that refuses port access: every request and operation ends at once.
#include "frudata/bmclib.h"
#include "frudata/debug.h"
#include "frudata/frudata.h"
#include "frudata/sdrscan.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace {

int g_asked = 0;

}

// Refused also where the test runs with all privileges.
extern "C" int iopl(int) noexcept {
    ++g_asked;
    return -1;
}

TEST(RefusedPorts, RequestsFailAtOnce) {
    const auto begin = std::chrono::steady_clock::now();
    SetLibDebugLevel(0);
    static BMC_MESSAGE request;
    static BMC_MESSAGE response;
    UINT8 buffer[8] = {};
    unsigned int count = 0;
    UINT32 type = 9;
    outb(0, 0x80);
    EXPECT_EQ(inb(0x80), 0xFF);
    EXPECT_EQ(g_asked, 1) << "a thread asks once";
    std::thread([] { EXPECT_EQ(inb(0x80), 0xFF); }).join();
    EXPECT_EQ(g_asked, 2) << "the kernel grants the access to a thread";
    EXPECT_EQ(IsKCS(), 0);
    EXPECT_EQ(startIPMI(), 0) << "this host supplies no IMB driver";
    EXPECT_EQ(endIPMI(), 0);
    EXPECT_EQ(KCSSendMessage(buffer, 2), 1);
    EXPECT_EQ(KCSReadBMCData(buffer, sizeof buffer, &count), 2);
    EXPECT_EQ(KCSBMCErrorHandler(), 2);
    EXPECT_EQ(WaitTilObf(5000000), 1);
    EXPECT_EQ(GetBmcType(&type), 1);
    EXPECT_EQ(type, 0U);
    request.rsSa = 0x72;
    EXPECT_EQ(ProcessMessage(&request, &response, 5000), -504);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

TEST(RefusedPorts, OperationsFailAtOnce) {
    const auto begin = std::chrono::steady_clock::now();
    _EFI_FRU_INTERFACE* const table = GetFruDataInterface();
    ASSERT_EQ(chdir(FRUDATA_TEXTS), 0);
    ASSERT_EQ(table->Initialize(table, 0), 0U);
    EXPECT_EQ(table->LoadConfigurationFromSystem(table), 0U);
    EXPECT_EQ(table->SelectList(table, FRU_LIST_SYSTEM), 0U);
    EXPECT_EQ(table->SelectFru(table, 0), FRU_STATUS_NO_SUCH_FIELD);
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
