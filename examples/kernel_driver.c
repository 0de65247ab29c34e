/*
 * A host beside the kernel's IPMI driver, where a server's BMC belongs to that driver: it shows the product's name and
 * asset tag in the BMC's own FRU, or in that of a controller behind the BMC, and sets the tag. Values need no texts;
 * for titles and messages it would load them with SetLanguageLocale, as asset_tag.c does.
 *
 *   kernel_driver [TAG [CONTROLLER]]      CONTROLLER: slave address on the first IPMB, such as 0x30
 *
 *   gcc kernel_driver.c -o kernel_driver $(pkg-config --cflags --libs frudata-openipmi)
 */
#include <frudata/frudata.h>
#include <frudata/openipmi.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define BMC_ADDRESS 0x20
#define FIRST_IPMB 0
#define NO_BUS 0xFF

static _EFI_FRU_INTERFACE* fru;

static int Fail(const char* what, EFI_STATUS status) {
    fprintf(stderr, "kernel_driver: %s: status %08X %s\n", what, (unsigned int)status, OpenIpmiFailure());
    return EXIT_FAILURE;
}

/* Starts anew, so that what is shown comes from the device. */
static EFI_STATUS Load(UINT8 address) {
    const UINT8 bus = address == BMC_ADDRESS ? NO_BUS : FIRST_IPMB;
    EFI_STATUS status = fru->Initialize(NULL, 0);
    if (status == FRU_STATUS_SUCCESS)
        status = fru->LoadFruAtAddress(fru, FRU_TYPE_IMBDEVICE, 0, address, bus, BMC_ADDRESS, 0, 0xFF, 0);
    if (status == FRU_STATUS_SUCCESS)
        status = fru->SelectList(fru, FRU_LIST_SYSTEM);
    if (status == FRU_STATUS_SUCCESS)
        status = fru->SelectFru(fru, 0);
    return status == FRU_STATUS_SUCCESS ? fru->SelectAreaEnum(fru, FRU_AREA_PRODUCT) : status;
}

static const WCHAR* Value(FRU_FIELD field) {
    const WCHAR* value = NULL;
    if (fru->SelectFieldEnum(fru, field) == FRU_STATUS_SUCCESS)
        fru->GetFieldStringValue(fru, &value);
    return value ? value : L"";
}

static EFI_STATUS Commit(const char* tag) {
    EFI_STATUS status = fru->SelectFieldEnum(fru, FRU_FIELD_PRODUCT_ASSET_TAG);
    if (status == FRU_STATUS_SUCCESS)
        status = fru->SetFieldDataValue(fru, (const UINT8*)tag, (unsigned int)strlen(tag));
    return status == FRU_STATUS_SUCCESS ? fru->CommitConfigurationToSystem(fru) : status;
}

int main(int argc, char** argv) {
    const UINT8 address = argc > 2 ? (UINT8)strtoul(argv[2], NULL, 0) : BMC_ADDRESS;
    EFI_STATUS status;

    /* The library would open it by itself, and look for the ports where there is none. */
    if (!OpenIpmiOpen()) {
        fprintf(stderr, "kernel_driver: %s\n", OpenIpmiFailure());
        return EXIT_FAILURE;
    }
    fru = GetFruDataInterface();
    if ((status = Load(address)) != FRU_STATUS_SUCCESS)
        return Fail("load", status);
    if (argc > 1) {
        if ((status = Commit(argv[1])) != FRU_STATUS_SUCCESS)
            return Fail("commit", status);
        fru->DeInitialize(fru);
        if ((status = Load(address)) != FRU_STATUS_SUCCESS)
            return Fail("read back", status);
    }
    printf("%s 0x%02X: %ls, ", OpenIpmiDevice(), address, Value(FRU_FIELD_PRODUCT_NAME));
    printf("asset tag '%ls'\n", Value(FRU_FIELD_PRODUCT_ASSET_TAG));
    return fru->DeInitialize(fru) || BmcLibDeinitialize() ? EXIT_FAILURE : EXIT_SUCCESS;
}
