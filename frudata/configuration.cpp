// Filling the lists of FRUs, choosing one, and carrying one FRU out again.
#include "common/allocate.h"
#include "common/assertion.h"
#include "common/ipmi.h"
#include "frudata/operation.h"
#include "frudata/operations.h"
#include "frudata/system/frudevice.h"

#include <cwchar>
#include <new>

namespace Frudata_Private {

namespace {

constexpr char TABLE_SOURCE[] = "frudata.cpp";
constexpr std::size_t LOADED_TEXT_SIZE = 256;

/// A file name in the current locale's multibyte form.
struct NARROW_NAME {
    std::unique_ptr<char[]> text; ///< null where the allocation failed
    bool isExact;                 ///< false: characters that the locale lacks have become '?'
};

NARROW_NAME ToNarrowName(const WCHAR* name) {
    const std::size_t length = std::wcstombs(nullptr, name, 0);
    if (length != static_cast<std::size_t>(-1)) {
        NARROW_NAME narrow{AllocateArray<char>(std::uint64_t{length} + 1), true};
        if (narrow.text)
            std::wcstombs(narrow.text.get(), name, length);
        return narrow;
    }
    const std::size_t characters = std::wcslen(name);
    NARROW_NAME narrow{AllocateArray<char>(std::uint64_t{characters} + 1), false};
    for (std::size_t index = 0; narrow.text && index < characters; ++index)
        narrow.text[index] = name[index] > 0 && name[index] < 0x80 ? static_cast<char>(name[index]) : '?';
    return narrow;
}

template <typename BODY> EFI_STATUS RunConfigurationOperation(const WCHAR* name, OPERATION_NEED need, BODY body) {
    return RunOperation(name, need, body, TRACE_FIRST);
}

EFI_STATUS FailAllocation(const COperation& operation, EFI_STATUS status) {
    return operation.Fail(L"FRU Error Allocation", STRING_OUT_OF_MEMORY, status);
}

/// Moves `fru` to the end of `list`. @return false when the list cannot grow, which destroys the FRU
bool AddToList(OrderedList<CFru*>& list, std::unique_ptr<CFru>& fru) {
    if (!list.Add(fru.get()))
        return false;
    static_cast<void>(fru.release());
    return true;
}

void ReportLoaded() {
    const unsigned int frus = g_FruData->m_pSystemList->Count();
    const unsigned int locators = g_FruData->m_pLocatorList->Count();
    WCHAR text[LOADED_TEXT_SIZE];
    FormatText(text, LOADED_TEXT_SIZE, STRING_PROGRESS_LOADED, frus, locators);
    // By contract the host sets the callback first.
    g_FruData->m_pfnProgress(PROGRESS_CALLBACK_LOAD, text, frus, locators);
}

} // namespace

} // namespace Frudata_Private

using namespace Frudata_Private;

EFI_STATUS SelectList(_EFI_FRU_INTERFACE*, int list) {
    return RunConfigurationOperation(L"SelectList", NEED_LOADED, [&](const COperation& operation) {
        g_FruData->m_pCurrentList = nullptr;
        g_FruData->m_listType = FRU_LIST_NONE;
        g_FruData->ClearFru();
        if (list == FRU_LIST_SYSTEM)
            g_FruData->m_pCurrentList = g_FruData->m_pSystemList.get();
        else if (list == FRU_LIST_FILE)
            g_FruData->m_pCurrentList = g_FruData->m_pFileList.get();
        else
            return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
        g_FruData->m_listType = list;
        return FRU_STATUS_SUCCESS;
    });
}

namespace Frudata_Public {

EFI_STATUS LoadConfigurationFromSystem(_EFI_FRU_INTERFACE*) {
    return RunConfigurationOperation(L"LoadConfigurationFromSystem", NEED_INITIALIZED, [](const COperation& operation) {
        // The BMC's own FRU device.
        const FRU_LOCATOR locator(BMC_ADDRESS, 0, 0, NO_BUS, 0, BMC_ADDRESS, 0, FRU_TYPE_IMBDEVICE);
        std::unique_ptr<CFru> fru(new (std::nothrow) CFru);
        if (!fru)
            return FailAllocation(operation, FRU_STATUS_OUT_OF_MEMORY);
        // An unreadable BMC leaves the list as it is; hosts look at the count.
        if (fru->LoadFromSystem(&locator) == FRU_STATUS_SUCCESS) {
            if (!AddToList(*g_FruData->m_pSystemList, fru))
                return FailAllocation(operation, FRU_STATUS_OUT_OF_MEMORY);
            ReportLoaded();
        }
        g_FruData->m_fLoaded = true;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS LoadConfigurationFromFile(_EFI_FRU_INTERFACE* This, const WCHAR* fileName, const WCHAR*) {
    return RunConfigurationOperation(L"LoadConfigurationFromFile", NEED_INITIALIZED, [&](const COperation& operation) {
        Assert(fileName != nullptr, TABLE_SOURCE, "pFileName");
        std::unique_ptr<CFru> fru(new (std::nothrow) CFru);
        const NARROW_NAME name = ToNarrowName(fileName);
        if (!fru || !name.text)
            return FailAllocation(operation, FRU_STATUS_OUT_OF_MEMORY);
        if (!name.isExact) {
            operation.Trace().Fail(L"Unexpected");
            RecordLastError(STRING_FILE_NOT_OPENED, static_cast<const char*>(name.text.get()));
            return EFI_STATUS{FRU_STATUS_FILE_READ_ERROR};
        }
        const EFI_STATUS status = fru->ReadFRUFromFile(name.text.get());
        if (status != FRU_STATUS_SUCCESS)
            return status;
        if (!AddToList(*g_FruData->m_pFileList, fru))
            return FailAllocation(operation, FRU_STATUS_OUT_OF_MEMORY);
        g_FruData->m_fLoaded = true;
        if (SelectList(This, FRU_LIST_FILE) != FRU_STATUS_SUCCESS)
            return operation.FailUnexpected(FRU_STATUS_BUFFER_TOO_SMALL);
        g_FruData->m_nFru = g_FruData->m_pFileList->Count() - 1;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS LoadFruAtAddress(_EFI_FRU_INTERFACE*, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress, UINT8 bus,
                            UINT8 controller, UINT8 deviceId, UINT8 mbmcSizeData, UINT16 mbmcSizeAddress) {
    return RunConfigurationOperation(L"LoadFruAtAddress", NEED_INITIALIZED, [&](const COperation& operation) {
        const FRU_LOCATOR locator(deviceAddress, mbmcSizeData, mbmcSizeAddress, bus, deviceId, controller, lun, type);
        std::unique_ptr<CFru> fru(new (std::nothrow) CFru);
        // Compatibility: the other load operations return OUT_OF_MEMORY.
        if (!fru)
            return FailAllocation(operation, FRU_STATUS_MEMORY_ALLOCATION_ERROR);
        const EFI_STATUS status = fru->LoadFromSystem(&locator);
        if (status != FRU_STATUS_SUCCESS)
            return status;
        if (!AddToList(*g_FruData->m_pSystemList, fru))
            return operation.FailUnexpected(FRU_STATUS_BUFFER_TOO_SMALL);
        g_FruData->m_fLoaded = true;
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS FindFruAtAddressAndChecksumHeader(_EFI_FRU_INTERFACE*, FRU_TYPE type, UINT8 lun, UINT8 deviceAddress,
                                             UINT8 bus, UINT8 controller, UINT8 deviceId) {
    return RunConfigurationOperation(
        L"FindFruAtAddressAndChecksumHeader", NEED_INITIALIZED, [&](const COperation& operation) {
            const FRU_LOCATOR locator(deviceAddress, 0xFF, 0, bus, deviceId, controller, lun, type);
            UINT8 header[CFruHeader::FRU_HEADER_LENGTH] = {};
            const EFI_STATUS status = CFru::ReadDataFromFRU(&locator, 0, sizeof header, header);
            if (status != FRU_STATUS_SUCCESS) {
                RecordLastError(STRING_DEVICE_NOT_READ);
                return status;
            }
            if ((header[FRU_HEADER_FORMAT_VERSION] & FRU_HEADER_VERSION_MASK) != FRU_HEADER_VERSION)
                return operation.Fail(L"Not IPMI FRU", STRING_NOT_IPMI_FRU, FRU_STATUS_NOT_IPMI_FRU);
            if (CFru::CalculateChecksum(header, sizeof header) != 0) {
                operation.Trace().Fail(L"Invalid Header Area");
                RecordFruError(STRING_INVALID_HEADER, &locator);
                return FRU_STATUS_CHECKSUM_ERROR;
            }
            return FRU_STATUS_SUCCESS;
        });
}

EFI_STATUS SaveConfigurationToFile(_EFI_FRU_INTERFACE*, const WCHAR* fileName, const WCHAR* auxFileName) {
    return RunConfigurationOperation(L"SaveConfigurationToFile", NEED_FRU, [&](const COperation& operation) {
        Assert(fileName != nullptr, TABLE_SOURCE, "pFileName");
        Assert(!auxFileName, TABLE_SOURCE, "!pAuxFileName");
        const NARROW_NAME name = ToNarrowName(fileName);
        if (!name.text)
            return FailAllocation(operation, FRU_STATUS_OUT_OF_MEMORY);
        if (!name.isExact) {
            operation.Trace().Fail(L"Error Writing File");
            RecordLastError(STRING_FILE_NOT_WRITTEN, static_cast<const char*>(name.text.get()));
            return EFI_STATUS{FRU_STATUS_FILE_CREATE_ERROR};
        }
        const EFI_STATUS status = g_FruData->SelectedFru().SaveFRUToFile(name.text.get());
        // Compatibility: a failure traces its exit, too.
        if (status != FRU_STATUS_SUCCESS)
            operation.Trace().Exit();
        return status;
    });
}

EFI_STATUS CommitConfigurationToSystem(_EFI_FRU_INTERFACE*) {
    return RunConfigurationOperation(L"CommitConfigurationToSystem", NEED_LOADED, [](const COperation& operation) {
        // A FRU from a file has an address, which may belong to another server.
        if (g_FruData->m_listType != FRU_LIST_SYSTEM || g_FruData->m_nFru == CURSOR_NONE)
            return operation.FailUnexpected(FRU_STATUS_NO_SUCH_FIELD);
        if (g_FruData->SelectedFru().WriteToSystem(g_FruData->m_pfnProgress) != FRU_STATUS_SUCCESS)
            return operation.Trace().Fail(L"Write FRU Error", FRU_STATUS_WRITE_FRU_ERROR);
        return FRU_STATUS_SUCCESS;
    });
}

EFI_STATUS AddFruToSystemList(_EFI_FRU_INTERFACE*) {
    const COperation operation(L"AddFruToSystemList");
    FailAssertion(TABLE_SOURCE, "0");
}

} // namespace Frudata_Public
