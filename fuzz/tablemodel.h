// What the headers promise of the 50 operations, followed call by call beside the library.
#pragma once

#include "fuzz/support.h"

#include <cstdint>

namespace Frudata_Fuzz {

using TABLE = _EFI_FRU_INTERFACE;

/// A FRU's address, and the device there.
struct FRU_PLACE {
    FRU_TYPE type;
    UINT8 lun;
    UINT8 address;
    UINT8 bus;
    UINT8 controller;
    UINT8 id;

    bool operator==(const FRU_PLACE&) const = default;
};
inline constexpr FRU_PLACE PLACES[] = {
    {FRU_TYPE_IMBDEVICE, 0, 0x20, 0xFF, 0x20, 0}, {FRU_TYPE_IMBDEVICE, 0, 0xC0, 0, 0x20, 0},
    {FRU_TYPE_AT24CO2, 0, 0xA0, 1, 0x20, 0},      {FRU_TYPE_DS1624S, 0, 0x92, 2, 0x20, 0},
    {FRU_TYPE_MBMC_FRU, 0, 0x20, 0xFF, 0x20, 0},  {FRU_TYPE_NONE, 0, 0x20, 0xFF, 0x20, 0}};

/// What an operation needs; from NEEDS_LOAD to NEEDS_FIELD, each includes those before it.
enum FUZZ_NEED {
    NEEDS_NOTHING,
    NEEDS_START,
    NEEDS_LOAD,
    NEEDS_LIST,
    NEEDS_FRU,
    NEEDS_AREA,
    NEEDS_FIELD,
    NEEDS_PROPERTIES,
    NEEDS_PROPERTY
};

/// Where a host stands.
struct CURSOR {
    enum START {
        DOWN,
        FAILED,
        UP
    };

    START start = UP;
    bool isLoaded = false;
    bool hasProperties = false;
    bool hasCallback = true;
    int list = FRU_LIST_NONE;
    unsigned int frus[3] = {}; ///< by list
    UINT32 fru = Frudata_Private::CURSOR_NONE;
    int area = FRU_AREA_NONE;
    UINT32 field = Frudata_Private::CURSOR_NONE;
    UINT32 property = Frudata_Private::CURSOR_NONE;

    /// The status that an operation stops with before it does anything, or 0.
    EFI_STATUS Check(FUZZ_NEED need) const;
    void SelectArea(int newArea) {
        area = newArea;
        field = Frudata_Private::CURSOR_NONE;
    }
    void SelectFru(UINT32 newFru) {
        fru = newFru;
        SelectArea(FRU_AREA_NONE);
    }
    bool IsInfoArea() const { return area >= FRU_AREA_CHASSIS && area <= FRU_AREA_PRODUCT; }
    bool HasFields() const { return area >= FRU_AREA_INTERNAL_USE && area <= FRU_AREA_PRODUCT; }
};

/// What came back, and whether it may where the checks let the operation pass.
struct ANSWER {
    EFI_STATUS status;
    bool isAllowed;
};

/// A host that calls the operations that `input` names.
struct HOST {
    TABLE* table;
    CInput& input;
    BYTES text; ///< every text of the string table that the host may load
    CURSOR cursor = {};
    EFI_STATUS required = 0; ///< of the operation that is being called
    unsigned int loads = 0;
    std::uint64_t digest; ///< of everything in all loaded FRUs
    BYTES strings = {};   ///< the table made from `text`, once it is needed

    HOST(TABLE* hostTable, CInput& hostInput, BYTES hostText);
    /// Calls one operation and checks all that it left.
    void CallNext();
    /// Brings back what EmptyLibrary starts with, where a host has replaced it.
    static void Restore();

    template <typename... PARAMETERS> EFI_STATUS Call(EFI_STATUS (*TABLE::*operation)(TABLE*, PARAMETERS...),
                                                      std::type_identity_t<PARAMETERS>... arguments) {
        return (table->*operation)(table, static_cast<PARAMETERS>(arguments)...);
    }
    bool IsReady() const { return required == 0; }
    void CheckCursor() const;
};

/// An operation, by its place in the table.
struct ROW {
    unsigned int number;
    FUZZ_NEED need;
    ANSWER (*call)(HOST& host);
    bool changesFrus = false;      ///< where it succeeds
    bool changesOnFailure = false; ///< as far as it has come
};
std::span<const ROW> WholeRows();
std::span<const ROW> CursorRows();
std::span<const ROW> ValueRows();

FRU_PLACE NextPlace(CInput& input);

template <auto OPERATION> ANSWER Text(HOST& host) {
    const WCHAR* text = nullptr;
    const EFI_STATUS status = host.Call(OPERATION, text);
    Read(text);
    return {status, status == 0};
}
template <auto OPERATION> ANSWER Flag(HOST& host) {
    bool flag = false;
    const EFI_STATUS status = host.Call(OPERATION, flag);
    return {status, status == 0};
}

} // namespace Frudata_Fuzz
