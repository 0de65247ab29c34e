/*
 * Sets the asset tag in the server's own FRU, on its device or, where files are given, in a FRU text file.
 *
 *   asset_tag TAG            needs root, and a BMC
 *   asset_tag TAG IN OUT
 *
 *   gcc asset_tag.c -o asset_tag $(pkg-config --cflags --libs frudata)
 *
 * FRUDATA_DATADIR names the directory of the library's texts where it is not /usr/share/frudata.
 */
#include <frudata/frudata.h>

#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static _EFI_FRU_INTERFACE* fru;

static int Fail(const char* what, EFI_STATUS status) {
    const WCHAR* reason = NULL;
    fru->GetLastErrorMessage(fru, &reason);
    fprintf(stderr, "asset_tag: %s: status %08X %ls\n", what, (unsigned int)status, reason ? reason : L"");
    return EXIT_FAILURE;
}

/* The library has nothing to report before a callback is set: loading from the server needs one. */
static unsigned int OnProgress(PROGRESS_CALLBACK_TYPE type, const WCHAR* message, unsigned int current,
                               unsigned int total) {
    (void)current;
    (void)total;
    if (type == PROGRESS_CALLBACK_WRITE)
        fprintf(stderr, "%ls\n", message);
    return 0;
}

static EFI_STATUS Load(const WCHAR* file) {
    EFI_STATUS status = FRU_STATUS_SUCCESS;
    if (file)
        return fru->LoadConfigurationFromFile(fru, file, NULL);
    status = fru->SetProgressCallback(fru, OnProgress);
    if (status == FRU_STATUS_SUCCESS)
        status = fru->LoadConfigurationFromSystem(fru);
    if (status == FRU_STATUS_SUCCESS)
        status = fru->SelectList(fru, FRU_LIST_SYSTEM);
    return status == FRU_STATUS_SUCCESS ? fru->SelectFru(fru, 0) : status;
}

static EFI_STATUS SetTag(const char* tag) {
    bool present = false;
    EFI_STATUS status = fru->HasProductArea(fru, &present);
    if (status == FRU_STATUS_SUCCESS && !present)
        status = FRU_STATUS_NO_SUCH_FIELD;
    if (status == FRU_STATUS_SUCCESS)
        status = fru->SelectAreaEnum(fru, FRU_AREA_PRODUCT);
    if (status == FRU_STATUS_SUCCESS)
        status = fru->SelectFieldEnum(fru, FRU_FIELD_PRODUCT_ASSET_TAG);
    return status == FRU_STATUS_SUCCESS ? fru->SetFieldDataValue(fru, (const UINT8*)tag, (unsigned int)strlen(tag))
                                        : status;
}

int main(int argc, char** argv) {
    const char* const given = getenv("FRUDATA_DATADIR");
    WCHAR texts[512] = L"", in[512] = L"", out[512] = L"";
    char directory[512];
    EFI_STATUS status;

    setlocale(LC_CTYPE, "C.UTF-8");
    snprintf(directory, sizeof directory, "%s/en", given ? given : "/usr/share/frudata");
    /* One character is stored like the mark that ends an area's fields. */
    if ((argc != 2 && argc != 4) || strlen(argv[1]) < 2 || mbstowcs(texts, directory, 511) >= 511 ||
        (argc == 4 && (mbstowcs(in, argv[2], 511) >= 511 || mbstowcs(out, argv[3], 511) >= 511))) {
        fprintf(stderr, "usage: asset_tag TAG [IN OUT]      a tag of at least two characters\n");
        return EXIT_FAILURE;
    }
    fru = GetFruDataInterface();
    if ((status = fru->Initialize(NULL, 0)) != FRU_STATUS_SUCCESS)
        return Fail("start", status);
    /* Only messages need the texts. */
    if (fru->SetLanguageLocale(fru, texts, L"us") != FRU_STATUS_SUCCESS)
        fprintf(stderr, "asset_tag: no texts at %sus; FRUDATA_DATADIR names the directory that holds enus\n",
                directory);
    if ((status = Load(argc == 4 ? in : NULL)) != FRU_STATUS_SUCCESS)
        return Fail("load", status);
    if ((status = SetTag(argv[1])) != FRU_STATUS_SUCCESS)
        return Fail("asset tag", status);
    status = argc == 4 ? fru->SaveConfigurationToFile(fru, out, NULL) : fru->CommitConfigurationToSystem(fru);
    if (status != FRU_STATUS_SUCCESS)
        return Fail("write", status);
    return fru->DeInitialize(fru) == FRU_STATUS_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
