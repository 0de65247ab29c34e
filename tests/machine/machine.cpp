// Runs in the emulated machine, over its real KCS ports or another way that it knows nothing of: what fructl does not
// show of the library. It finds the BMC, scans the SDR repository and bridges a request. Written against the public
// headers only.
#include "frudata/bmclib.h"
#include "frudata/frudata.h"
#include "frudata/sdrscan.h"

#include <cstdio>
#include <cwchar>
#include <memory>

namespace {

constexpr UINT8 SATELLITE_ADDRESS = 0x40;
constexpr unsigned int REQUEST_TIMEOUT = 5000; // milliseconds

unsigned int g_failures = 0;

// The library's discovery may print wide text, so everything here is wide too.
void Check(bool holds, const wchar_t* what) {
    std::wprintf(L"%ls: %ls\n", holds ? L"ok" : L"FAILED", what);
    g_failures += holds ? 0 : 1;
}

unsigned int IgnoreProgress(PROGRESS_CALLBACK_TYPE, const WCHAR*, unsigned int, unsigned int) {
    return 0;
}

/// Scans the repository and prints each locator.
void Scan() {
    OrderedList<FRU_LOCATOR*> locators;
    OrderedList<FRU_LOCATOR*>* list = &locators;
    Check(ScanSystemForFruLocators(list) == FRU_STATUS_SUCCESS, L"SDR repository scanned");
    while (FRU_LOCATOR* locator = locators.Remove(locators.First())) {
        const std::unique_ptr<FRU_LOCATOR> owner(locator);
        std::wprintf(L"locator: address 0x%02X bus 0x%02X device 0x%02X controller 0x%02X lun %u type %u name %ls\n",
                     locator->deviceAddress, locator->bus, locator->deviceId, locator->controller, locator->lun,
                     static_cast<unsigned int>(locator->type), locator->name ? locator->name : L"(none)");
    }
}

/// Sends a request without data to the controller behind the BMC, which knows Get Device ID only.
void Bridge(UINT8 command, UINT8 completionCode, UINT32 leastLength) {
    const auto request = std::make_unique<BMC_MESSAGE>();
    const auto response = std::make_unique<BMC_MESSAGE>();
    request->rsSa = SATELLITE_ADDRESS;
    request->netFn = 0x06;
    request->cmd = command;
    const int status = ProcessMessage(request.get(), response.get(), REQUEST_TIMEOUT);
    std::wprintf(L"bridged: status %d from 0x%02X net function 0x%02X command 0x%02X completion 0x%02X data", status,
                 response->rsSa, response->netFn, response->cmd, response->completionCode);
    for (UINT32 i = 0; i < response->dataLength && i < 16; ++i)
        std::wprintf(L" %02X", response->data[i]);
    std::wprintf(L"\n");
    Check(status == 0 && response->rsSa == SATELLITE_ADDRESS && response->netFn == 0x07 && response->cmd == command &&
              response->completionCode == completionCode && response->dataLength >= leastLength,
          L"answer of the bridged controller");
}

} // namespace

int main() {
    _EFI_FRU_INTERFACE* const table = GetFruDataInterface();
    Check(BmcLibInitialize() == 0, L"BMC found through SMBIOS");
    Check(table->Initialize(table, 0) == FRU_STATUS_SUCCESS, L"Initialize");
    table->SetProgressCallback(table, IgnoreProgress);
    Check(table->LoadConfigurationFromSystem(table) == FRU_STATUS_SUCCESS &&
              table->SelectList(table, FRU_LIST_SYSTEM) == FRU_STATUS_SUCCESS &&
              table->SelectFru(table, 0) == FRU_STATUS_SUCCESS,
          L"the BMC's FRU loaded");
    Scan();
    Bridge(0x01, 0x00, 11);
    Bridge(0x02, 0xC1, 0);
    Check(table->DeInitialize(table) == FRU_STATUS_SUCCESS, L"DeInitialize");
    std::wprintf(L"%u comparisons failed\n", g_failures);
    return g_failures == 0 ? 0 : 1;
}
