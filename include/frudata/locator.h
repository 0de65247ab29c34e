/** frudata: the address of one FRU device. C++ only. @file */
#ifndef FRUDATA_LOCATOR_H
#define FRUDATA_LOCATOR_H

#include "frudata/debug.h"
#include "frudata/types.h"

#include <cstdlib>
#include <cwchar>
#include <memory>
#include <new>

/**
 * Address record of one FRU device: filled by the SDR scan, by a FRU text file or by the caller.
 * A new record names the BMC's own FRU device. Everything is inline: a host can create, keep and delete records
 * of its own.
 */
struct FRU_LOCATOR {
    UINT8 deviceAddress;    /**< slave address of the FRU device or of its controller */
    UINT8 mbmcSizeData;     /**< data-size value of a FRU_TYPE_MBMC_FRU */
    UINT16 mbmcSizeAddress; /**< address-size value of a FRU_TYPE_MBMC_FRU */
    UINT8 bus;              /**< private bus or channel; 0xFF: none */
    UINT8 deviceId;         /**< FRU device ID */
    UINT8 controller;       /**< access controller address; 0x20 is the BMC */
    UINT8 lun;              /**< logical unit number */
    FRU_TYPE type;          /**< access path */
    WCHAR* name;            /**< display name or null; owned by the record */

    /** Takes the fields in their order. `displayName` is copied; if memory runs out, the record has no name. */
    explicit FRU_LOCATOR(UINT8 address = 0x20, UINT8 sizeData = 0xFF, UINT16 sizeAddress = 0, UINT8 busNumber = 0xFF,
                         UINT8 id = 0, UINT8 accessController = 0x20, UINT8 logicalUnit = 0,
                         FRU_TYPE accessType = FRU_TYPE_IMBDEVICE, const WCHAR* displayName = nullptr)
        : deviceAddress(address), mbmcSizeData(sizeData), mbmcSizeAddress(sizeAddress), bus(busNumber), deviceId(id),
          controller(accessController), lun(logicalUnit), type(accessType), name(nullptr) {
        if (displayName)
            SetName(displayName);
    }
    FRU_LOCATOR(const FRU_LOCATOR&) = delete;
    FRU_LOCATOR& operator=(const FRU_LOCATOR&) = delete;
    ~FRU_LOCATOR() { std::default_delete<WCHAR[]>()(name); }

    /**
     * Replaces the name by a copy of `text`.
     * @return 0; 1 for a null text (nothing changes); FRU_STATUS_OUT_OF_MEMORY (the old name is gone)
     */
    EFI_STATUS SetName(const WCHAR* text) {
        Dbg(L"FRU_LOCATOR::SetName [ENTRY]", 3);
        if (!text)
            return 1;
        const std::size_t length = std::wcslen(text);
        std::unique_ptr<WCHAR[]> copy = NewText(length);
        if (copy)
            std::wmemcpy(copy.get(), text, length); // which may be the old name
        std::default_delete<WCHAR[]>()(name);
        name = copy.release();
        if (!name)
            return FRU_STATUS_OUT_OF_MEMORY;
        Dbg(L"FRU_LOCATOR::SetName [EXIT]", 3);
        return FRU_STATUS_SUCCESS;
    }

    /**
     * Replaces the name by `text`, converted from the current locale's multibyte form.
     * @return as above; 1 also for a text that cannot be converted or a failed allocation
     */
    EFI_STATUS SetName(const char* text) {
        const std::size_t length = text ? std::mbstowcs(nullptr, text, 0) : static_cast<std::size_t>(-1);
        if (length == static_cast<std::size_t>(-1))
            return 1;
        const std::unique_ptr<WCHAR[]> wide = NewText(length);
        if (!wide)
            return 1;
        // The last place stays 0: a text that ends inside a character is converted without a terminator.
        std::mbstowcs(wide.get(), text, length);
        return SetName(wide.get());
    }

  private:
    /** Room for `length` characters and a terminator, all 0; null when memory runs out or no array has that size. */
    static std::unique_ptr<WCHAR[]> NewText(std::size_t length) {
        return std::unique_ptr<WCHAR[]>(length < PTRDIFF_MAX / sizeof(WCHAR) ? new (std::nothrow) WCHAR[length + 1]()
                                                                             : nullptr);
    }
};

#endif
