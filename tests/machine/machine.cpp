// Runs in the emulated machine, over its real KCS ports: loads the FRUs, edits, commits and reloads them,
// scans the SDR repository and bridges a request. Written against the public headers only.
#include "frudata/bmclib.h"
#include "frudata/frudata.h"
#include "frudata/sdrscan.h"

#include <cstdio>
#include <cwchar>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr UINT8 SATELLITE_ADDRESS = 0x40;
constexpr unsigned int REQUEST_TIMEOUT = 5000; // milliseconds

struct CEdit {
    unsigned int device;
    unsigned int area;
    unsigned int field;
    std::basic_string<UINT8> value; // never a null pointer, even when empty
};

_EFI_FRU_INTERFACE* const gp_table = GetFruDataInterface();
unsigned int g_failures = 0;

// The library's discovery may print wide text, so everything here is wide too.
bool Check(bool holds, const wchar_t* what) {
    std::wprintf(L"%ls: %ls\n", holds ? L"ok" : L"FAILED", what);
    g_failures += holds ? 0 : 1;
    return holds;
}

bool CheckStatus(EFI_STATUS status, const wchar_t* what) {
    if (status != FRU_STATUS_SUCCESS) {
        const WCHAR* message = nullptr;
        gp_table->GetLastErrorMessage(gp_table, message);
        std::wprintf(L"status 0x%08X: %ls\n", status, message ? message : L"(no message)");
    }
    return Check(status == FRU_STATUS_SUCCESS, what);
}

/// Reads lines "device area field bytes", the bytes in hexadecimal or "-" for none. In an area without settable
/// fields they replace the whole area.
std::vector<CEdit> ReadEdits(const char* path) {
    std::vector<CEdit> edits;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "r"), std::fclose);
    CEdit edit;
    char bytes[128];
    while (file && std::fscanf(file.get(), "%u %u %u %127s", &edit.device, &edit.area, &edit.field, bytes) == 4) {
        edit.value.clear();
        unsigned int byte = 0;
        for (const char* at = bytes; std::sscanf(at, "%2x", &byte) == 1; at += 2)
            edit.value.push_back(static_cast<UINT8>(byte));
        edits.push_back(edit);
    }
    Check(!edits.empty(), L"edits read");
    return edits;
}

unsigned int ReportProgress(PROGRESS_CALLBACK_TYPE, const WCHAR* message, unsigned int, unsigned int) {
    std::wprintf(L"progress: %ls\n", message);
    return 0;
}

bool SelectField(unsigned int device, unsigned int area, unsigned int field) {
    return gp_table->SelectFru(gp_table, device) == FRU_STATUS_SUCCESS &&
           gp_table->SelectAreaEnum(gp_table, static_cast<FRU_AREA>(area)) == FRU_STATUS_SUCCESS &&
           gp_table->SelectFieldInteger(gp_table, field) == FRU_STATUS_SUCCESS;
}

void ShowFields(unsigned int device) {
    for (unsigned int area = FRU_AREA_CHASSIS; area <= FRU_AREA_PRODUCT; ++area) {
        const WCHAR* title = nullptr;
        const WCHAR* value = nullptr;
        for (unsigned int field = 0; SelectField(device, area, field); ++field)
            if (gp_table->GetFieldTitle(gp_table, title) == FRU_STATUS_SUCCESS &&
                gp_table->GetFieldStringValue(gp_table, value) == FRU_STATUS_SUCCESS)
                std::wprintf(L"  device %u: %ls = %ls\n", device, title, value ? value : L"(none)");
    }
}

/// Scans the repository and prints each locator. @return the first FRU device behind the BMC, to be loaded
std::unique_ptr<FRU_LOCATOR> Scan() {
    OrderedList<FRU_LOCATOR*> locators;
    OrderedList<FRU_LOCATOR*>* list = &locators;
    std::unique_ptr<FRU_LOCATOR> device;
    Check(ScanSystemForFruLocators(list) == FRU_STATUS_SUCCESS, L"SDR repository scanned");
    while (FRU_LOCATOR* locator = locators.Remove(locators.First())) {
        std::unique_ptr<FRU_LOCATOR> owner(locator);
        std::wprintf(L"locator: address 0x%02X bus 0x%02X device 0x%02X controller 0x%02X lun %u type %u name %ls\n",
                     locator->deviceAddress, locator->bus, locator->deviceId, locator->controller, locator->lun,
                     static_cast<unsigned int>(locator->type), locator->name ? locator->name : L"(none)");
        if (!device && locator->type == FRU_TYPE_IMBDEVICE)
            device = std::move(owner);
    }
    return device;
}

/// Starts the library, loads the BMC's own FRU as device 0 and the one that the scan finds as device 1.
bool StartAndLoad() {
    if (!CheckStatus(gp_table->Initialize(gp_table, 0), L"Initialize"))
        return false;
    gp_table->SetProgressCallback(gp_table, ReportProgress);
    CheckStatus(gp_table->LoadConfigurationFromSystem(gp_table), L"LoadConfigurationFromSystem");
    const std::unique_ptr<FRU_LOCATOR> device = Scan();
    if (!Check(device != nullptr, L"FRU device found by the scan"))
        return false;
    CheckStatus(gp_table->LoadFruAtAddress(gp_table, device->type, device->lun, device->deviceAddress, device->bus,
                                           device->controller, device->deviceId, device->mbmcSizeData,
                                           device->mbmcSizeAddress),
                L"LoadFruAtAddress");
    if (!CheckStatus(gp_table->SelectList(gp_table, FRU_LIST_SYSTEM), L"SelectList"))
        return false;
    ShowFields(0);
    ShowFields(1);
    return true;
}

bool IsWholeArea(const CEdit& edit) {
    return edit.area == FRU_AREA_INTERNAL_USE || edit.area == FRU_AREA_MULTIRECORD;
}

bool Select(const CEdit& edit) {
    if (!IsWholeArea(edit))
        return SelectField(edit.device, edit.area, edit.field);
    return gp_table->SelectFru(gp_table, edit.device) == FRU_STATUS_SUCCESS &&
           gp_table->SelectAreaEnum(gp_table, static_cast<FRU_AREA>(edit.area)) == FRU_STATUS_SUCCESS;
}

void EditAndCommit(const std::vector<CEdit>& edits) {
    for (const CEdit& edit : edits) {
        const auto set = IsWholeArea(edit) ? gp_table->SetAreaData : gp_table->SetFieldDataValue;
        const bool isSelected = Select(edit);
        const EFI_STATUS status = set(gp_table, edit.value.data(), static_cast<unsigned int>(edit.value.size()));
        if (!isSelected || status != FRU_STATUS_SUCCESS)
            CheckStatus(status, IsWholeArea(edit) ? L"SetAreaData" : L"SetFieldDataValue");
    }
    for (unsigned int device = 0; device < 2; ++device) {
        gp_table->SelectFru(gp_table, device);
        CheckStatus(gp_table->CommitConfigurationToSystem(gp_table), L"CommitConfigurationToSystem");
    }
}

void Compare(const std::vector<CEdit>& edits) {
    static UINT8 area[512];
    for (const CEdit& edit : edits) {
        const UINT8* data = area;
        unsigned int length = sizeof area;
        const WCHAR* title = nullptr;
        const bool isRead = Select(edit) && (IsWholeArea(edit) ? gp_table->GetAreaData(gp_table, area, length)
                                                               : gp_table->GetFieldDataValue(gp_table, data, length)) ==
                                                FRU_STATUS_SUCCESS;
        const bool isNamed = (IsWholeArea(edit) ? gp_table->GetAreaName(gp_table, title)
                                                : gp_table->GetFieldTitle(gp_table, title)) == FRU_STATUS_SUCCESS;
        Check(isRead && isNamed && std::basic_string<UINT8>(data, length) == edit.value, isNamed ? title : L"name");
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

int main(int argc, char** argv) {
    const std::vector<CEdit> edits = ReadEdits(argc > 1 ? argv[1] : "");
    Check(BmcLibInitialize() == 0, L"BMC found through SMBIOS");
    if (StartAndLoad())
        EditAndCommit(edits);
    CheckStatus(gp_table->DeInitialize(gp_table), L"DeInitialize");
    if (StartAndLoad())
        Compare(edits);
    Bridge(0x01, 0x00, 11);
    Bridge(0x02, 0xC1, 0);
    CheckStatus(gp_table->DeInitialize(gp_table), L"DeInitialize");
    std::wprintf(L"%u comparisons failed\n", g_failures);
    return g_failures == 0 ? 0 : 1;
}
