/*
 * A host with its own way to the BMC: it defines the three functions of an IMB driver, and the library takes
 * them for every request. Here they serve a binary FRU image in a file, where a real host would pass the
 * request on to its driver. The host shows the product's name and counts the requests. Values need no texts; for titles
 * and messages it would load them with SetLanguageLocale, as asset_tag.c does.
 *
 *   imb_host IMAGE
 *
 *   gcc imb_host.c -o imb_host $(pkg-config --cflags --libs frudata)
 */
#include <frudata/bmclib.h>
#include <frudata/frudata.h>
#include <frudata/imbdriver.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* Network functions, commands and completion codes of IPMI 2.0. */
#define NETFN_APP 0x06
#define NETFN_STORAGE 0x0A
#define CMD_GET_DEVICE_ID 0x01
#define CMD_GET_FRU_AREA_INFO 0x10
#define CMD_READ_FRU_DATA 0x11
#define CODE_INVALID_COMMAND 0xC1
#define CODE_BAD_LENGTH 0xC7
#define CODE_OUT_OF_RANGE 0xC9

static UINT8 g_image[4096];
static unsigned int g_size;
static unsigned int g_requests;

static UINT8 ReadFru(const UINT8* data, UINT8* answer, int* length) {
    const unsigned int offset = data[1] | (unsigned int)data[2] << 8;
    const unsigned int count = data[3];
    if (offset > g_size || count > g_size - offset)
        return CODE_OUT_OF_RANGE;
    answer[0] = (UINT8)count;
    memcpy(answer + 1, g_image + offset, count);
    *length = (int)count + 1;
    return 0;
}

static UINT8 Answer(const _IMBPREQUESTDATA* request, UINT8* answer, int* length) {
    /* A BMC of IPMI 2.0 with a FRU inventory device. */
    static const UINT8 identity[11] = {0x20, 0x01, 0x01, 0x00, 0x02, 0x08};
    if (request->netFn == NETFN_APP && request->cmdType == CMD_GET_DEVICE_ID) {
        memcpy(answer, identity, sizeof identity);
        *length = (int)sizeof identity;
        return 0;
    }
    if (request->netFn != NETFN_STORAGE)
        return CODE_INVALID_COMMAND;
    switch (request->cmdType) {
    case CMD_GET_FRU_AREA_INFO:
        answer[0] = (UINT8)g_size;
        answer[1] = (UINT8)(g_size >> 8);
        answer[2] = 0; /* counted in bytes */
        *length = 3;
        return 0;
    case CMD_READ_FRU_DATA:
        return request->dataLength == 4 ? ReadFru(request->data, answer, length) : CODE_BAD_LENGTH;
    default:
        return CODE_INVALID_COMMAND;
    }
}

int open_imb(void) {
    return 1; /* there is a driver */
}

int close_imb(void) {
    return 0;
}

/* 0 says that the BMC answered; what it thought of the request is the completion code. */
int SendTimedImbpRequest(const _IMBPREQUESTDATA* request, int timeout, UINT8* responseData, int* responseLength,
                         UINT8* completionCode) {
    (void)timeout;
    if (*responseLength < 256)
        return 1;
    ++g_requests;
    *responseLength = 0;
    *completionCode = Answer(request, responseData, responseLength);
    return 0;
}

int main(int argc, char** argv) {
    _EFI_FRU_INTERFACE* fru = GetFruDataInterface();
    const WCHAR* name = NULL;
    FILE* file = argc == 2 ? fopen(argv[1], "rb") : NULL;

    if (!file) {
        fprintf(stderr, "usage: imb_host IMAGE\n");
        return EXIT_FAILURE;
    }
    g_size = (unsigned int)fread(g_image, 1, sizeof g_image, file);
    fclose(file);
    if (fru->Initialize(NULL, 0) || fru->LoadFruAtAddress(fru, FRU_TYPE_IMBDEVICE, 0, 0x20, 0xFF, 0x20, 0, 0xFF, 0) ||
        fru->SelectList(fru, FRU_LIST_SYSTEM) || fru->SelectFru(fru, 0) || fru->SelectAreaEnum(fru, FRU_AREA_PRODUCT) ||
        fru->SelectFieldEnum(fru, FRU_FIELD_PRODUCT_NAME) || fru->GetFieldStringValue(fru, &name) || !name) {
        fprintf(stderr, "imb_host: no product name in %s\n", argv[1]);
        return EXIT_FAILURE;
    }
    printf("%ls, after %u requests\n", name, g_requests);
    return fru->DeInitialize(fru) || BmcLibDeinitialize() ? EXIT_FAILURE : EXIT_SUCCESS;
}
