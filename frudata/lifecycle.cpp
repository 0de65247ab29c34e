// Start, end and settings of the library.
#include "frudata/bmclib.h"
#include "frudata/image/platform.h"
#include "frudata/operation.h"
#include "frudata/operations.h"
#include "frudata/system/messages.h"

#include <cstring>
#include <new>

UINT8 gPwd[17];

namespace Frudata_Private {

namespace {

constexpr WCHAR STRING_TABLE_FILE[] = L"frudata/str/frudata.str";

FRU_DISPLAY_CALLBACK p_display = nullptr;
bool mPasswordSet = false;

} // namespace

} // namespace Frudata_Private

namespace Frudata_Public {

using namespace Frudata_Private;

EFI_STATUS Initialize(_EFI_FRU_INTERFACE* This, int platform) {
    const COperation operation(L"Initialize");
    const auto fail = [&operation](const WCHAR* reason) {
        g_FruData.reset();
        return operation.Trace().Fail(reason, FRU_STATUS_INIT_FAILED);
    };
    // Without a BMC the library still works on FRU text files.
    BmcLibInitialize();
    ResetLastError();
    g_fdPlatform = platform;
    g_startState = START_DOWN;
    if (!AllocateMessages())
        return fail(L"Memory Allocation Error");
    g_FruData.reset(new (std::nothrow) CFruData);
    if (!g_FruData)
        return fail(L"Memory Allocation Error");
    g_startState = START_FAILED;
    if (!g_FruData->IsComplete())
        return fail(L"Memory Allocation Error");
    if (This && This->SetLanguageLocale && This->SetLanguageLocale(This, L"en", L"us") != FRU_STATUS_SUCCESS)
        return fail(L"Error Initializing String Resource");
    g_startState = START_UP;
    return operation.Trace().Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS DeInitialize(_EFI_FRU_INTERFACE*) {
    const COperation operation(L"DeInitialize");
    if (g_startState == START_FAILED)
        return FRU_STATUS_NOT_INITIALIZED;
    FreeMessages();
    g_FruData.reset();
    g_startState = START_DOWN;
    g_pStringResource.reset();
    return operation.Trace().Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS IsLoaded(_EFI_FRU_INTERFACE*, bool& loaded) {
    return RunOperation(L"IsLoaded", NEED_INITIALIZED, [&](const COperation&) {
        loaded = g_FruData->m_fLoaded;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS IsModified(_EFI_FRU_INTERFACE*, bool& modified) {
    return RunOperation(L"IsModified", NEED_LOADED, [&](const COperation&) {
        modified = g_FruData->m_fModified;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS GetLastErrorMessage(_EFI_FRU_INTERFACE*, const WCHAR*& message) {
    message = nullptr;
    return RunOperation(L"GetLastErrorMessage", NEED_INITIALIZED, [&](const COperation&) {
        message = TakeLastError();
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SetLanguageLocale(_EFI_FRU_INTERFACE*, const WCHAR* language, const WCHAR* country) {
    const COperation operation(L"SetLanguageLocale");
    std::unique_ptr<CStringResource> strings(new (std::nothrow) CStringResource);
    if (!strings)
        return operation.Trace().Fail(L"Memory Allocation Error", FRU_STATUS_MEMORY_ALLOCATION_ERROR);
    if (strings->Initialize(language, country, STRING_TABLE_FILE, 0) != 0 || strings->CacheAll() != 0)
        return operation.Trace().Fail(L"Error Initializing String Resource", FRU_STATUS_STRING_RESOURCE_ERROR);
    g_pStringResource = std::move(strings);
    return operation.Trace().Exit(FRU_STATUS_SUCCESS);
}

EFI_STATUS SetProgressCallback(_EFI_FRU_INTERFACE*, FRU_PROGRESS_CALLBACK callback) {
    return RunOperation(L"SetProgressCallback", NEED_INITIALIZED, [&](const COperation&) {
        g_FruData->m_pfnProgress = callback;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SetProgressCallbackInterval(_EFI_FRU_INTERFACE*, unsigned int interval) {
    return RunOperation(L"SetProgressCallbackInterval", NEED_INITIALIZED, [&](const COperation&) {
        g_FruData->m_progressInterval = interval;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SetDebugLevel(_EFI_FRU_INTERFACE*, unsigned int level) {
    return RunOperation(L"SetDebugLevel", NEED_INITIALIZED, [&](const COperation&) {
        SetLibDebugLevel(level);
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS SetDisplayCallback(_EFI_FRU_INTERFACE*, FRU_DISPLAY_CALLBACK callback) {
    p_display = callback;
    return FRU_STATUS_SUCCESS;
}

EFI_STATUS SetPwd(_EFI_FRU_INTERFACE*, const UINT8* password, unsigned int) {
    // The caller keeps to 16 bytes: the contract has no status for a longer password. A hardened C library stops the
    // process instead of overrunning the buffer.
    // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy)
    std::strcpy(reinterpret_cast<char*>(gPwd), reinterpret_cast<const char*>(password));
    mPasswordSet = true;
    return FRU_STATUS_SUCCESS;
}

} // namespace Frudata_Public
