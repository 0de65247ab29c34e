/* A host in plain C, built against the public headers alone: loads a FRU, shows it, sets a field, saves it. */
#include "frudata/bmclib.h"
#include "frudata/debug.h"
#include "frudata/frudata.h"

#include <stdlib.h>
#include <string.h>

static int g_failures = 0;

static void Check(int holds, const char* what) {
    if (!holds) {
        fprintf(stderr, "failed: %s\n", what);
        ++g_failures;
    }
}
#define CHECK(condition) Check((condition) != 0, #condition)

/* The host's own driver, with nothing behind it: no request ever leaves the process. */
int open_imb(void) {
    return 1;
}
int close_imb(void) {
    return 0;
}
int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                         UINT8* completionCode) {
    CHECK(request->rsSa == 0x20 && timeout == 5000 && responseData && *responseLength == 65535);
    (void)completionCode;
    return 1;
}

static unsigned int g_calls = 0;
static unsigned int OnProgress(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int current,
                               unsigned int total) {
    (void)message;
    g_calls += type == PROGRESS_CALLBACK_LOAD && current == total;
    return 0;
}

static void ShowAreas(_EFI_FRU_INTERFACE* fru) {
    unsigned int areas = 0, fields = 0, shown = 0, area, field;
    CHECK(fru->GetNumberOfAreas(fru, &areas) == FRU_STATUS_SUCCESS && areas == 5);
    for (area = 0; area < areas; ++area) {
        const WCHAR *name = NULL, *title = NULL, *value = NULL;
        CHECK(fru->SelectAreaInteger(fru, area) == 0 && fru->GetAreaName(fru, &name) == 0);
        CHECK(fru->GetNumberOfFields(fru, &fields) == 0);
        for (field = 0; field < fields; ++field, ++shown) {
            CHECK(fru->SelectFieldInteger(fru, field) == 0 && fru->GetFieldTitle(fru, &title) == 0);
            CHECK(fru->GetFieldStringValue(fru, &value) == 0 && name && title && value);
        }
    }
    CHECK(shown == 1 + 4 + 8 + 8);
}

/* Arguments: a FRU text file with a product area, and the name of a file to write. */
int main(int argc, char** argv) {
    WCHAR in[512], out[512];
    const WCHAR* message = NULL;
    const UINT8 tag[] = {'T', 'A', 'G', '7'};
    const UINT8* data = NULL;
    FRU_TYPE type = FRU_TYPE_NONE;
    UINT8 lun, address, bus, controller, id, sizeData;
    UINT16 sizeAddress;
    unsigned int first = 0, second = 0, length = 0;
    bool flag = false;
    _EFI_FRU_INTERFACE* fru = GetFruDataInterface();

    if (argc != 3 || mbstowcs(in, argv[1], 512) >= 512 || mbstowcs(out, argv[2], 512) >= 512)
        return 2;
    CHECK(fru->revision == FRUDATA_INTERFACE_REVISION && KCSAddress == 0xCA2 && LIBDBG_DEBUG_LEVEL == 1);
    CHECK(!memcmp(&g_FruDataGuid, "\xC0\x57\x71\xA2\x0E\xD8\x3A\x43\xAA\xD0\xF1\xE1\xF7\xEB\xD6\xA9", 16));
    CHECK(fru->GetFruName(fru, &message) == FRU_STATUS_NOT_INITIALIZED);
    CHECK(fru->Initialize(fru, 0) == FRU_STATUS_SUCCESS);
    CHECK(fru->SetProgressCallback(fru, OnProgress) == 0 && fru->LoadConfigurationFromSystem(fru) == 0 && g_calls == 0);
    CHECK(fru->LoadConfigurationFromFile(fru, in, NULL) == FRU_STATUS_SUCCESS);
    CHECK(fru->GetNumberOfFrus(fru, &first, &second) == 0 && first == 1 && second == 1);
    CHECK(fru->GetFruAddress(fru, &type, &lun, &address, &bus, &controller, &id, &sizeData, &sizeAddress) == 0);
    CHECK(type == FRU_TYPE_IMBDEVICE && address == 0x20 && bus == 0xFF && sizeData == 0xFF && sizeAddress == 0);
    CHECK(fru->HasProductArea(fru, &flag) == 0 && flag);
    ShowAreas(fru);
    CHECK(fru->SelectAreaEnum(fru, FRU_AREA_PRODUCT) == 0);
    CHECK(fru->SelectFieldEnum(fru, FRU_FIELD_PRODUCT_ASSET_TAG) == 0);
    CHECK(fru->SetFieldDataValue(fru, tag, sizeof tag) == 0);
    CHECK(fru->GetFieldDataValue(fru, &data, &length) == 0 && length == sizeof tag && !memcmp(data, tag, sizeof tag));
    CHECK(fru->SaveConfigurationToFile(fru, out, NULL) == 0);
    CHECK(fru->CommitConfigurationToSystem(fru) == FRU_STATUS_NO_SUCH_FIELD);
    CHECK(fru->GetLastErrorMessage(fru, &message) == 0 && message);
    CHECK(fru->DeInitialize(fru) == FRU_STATUS_SUCCESS && BmcLibDeinitialize() == 0);
    return g_failures != 0;
}
