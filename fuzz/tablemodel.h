// What the headers promise of the 50 operations, followed call by call beside the library.
#pragma once

#include "fuzz/support.h"

#include <cstdint>

namespace Frudata_Fuzz {

/// A FRU's address, and the device there.
struct FRU_PLACE {
    FRU_TYPE type;
    UINT8 lun;
    UINT8 address;
    UINT8 bus;
    UINT8 controller;
    UINT8 id;
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
    void ClearArea();
    void ClearFru();
    bool IsInfoArea() const { return area >= FRU_AREA_CHASSIS && area <= FRU_AREA_PRODUCT; }
    bool HasFields() const { return area >= FRU_AREA_INTERNAL_USE && area <= FRU_AREA_PRODUCT; }
};

/// A number for everything in all loaded FRUs.
std::uint64_t DigestFrus();

/// What came back, and whether it may where the checks let the operation pass.
struct ANSWER {
    EFI_STATUS status;
    bool isAllowed;
};

/// A host that calls the operations that `input` names.
class CHost {
  public:
    /// `text` is what every text of the string table is that the host may load.
    CHost(_EFI_FRU_INTERFACE* table, CInput& input, BYTES text)
        : m_table(table), m_input(input), m_text(std::move(text)) {}
    CHost(const CHost&) = delete;
    CHost& operator=(const CHost&) = delete;

    /// Calls one operation and checks all that it left.
    void CallNext();
    unsigned int Loads() const { return m_loads; }
    /// Brings back what EmptyLibrary starts with, where a host has replaced it.
    static void Restore();

    template <auto OPERATION> ANSWER Text();
    template <auto OPERATION> ANSWER Flag();
    ANSWER Start();
    ANSWER End();
    ANSWER LoadSystem();
    ANSWER LoadFile();
    ANSWER LoadDevice();
    ANSWER FindDevice();
    ANSWER Commit();
    ANSWER Save();
    ANSWER IsModified();
    ANSWER LastError();
    ANSWER Language();
    ANSWER Callback();
    ANSWER Interval();
    ANSWER DebugLevel();
    ANSWER DisplayCallback();
    ANSWER Password();
    ANSWER SelectList();
    ANSWER CountFrus();
    ANSWER SelectFru();
    ANSWER SelectFruByAddress();
    ANSWER Address();
    ANSWER CountAreas();
    ANSWER SelectArea();
    ANSWER SelectAreaInteger();
    ANSWER AreaName();
    ANSWER CountFields();
    ANSWER SelectField();
    ANSWER SelectFieldInteger();
    ANSWER Room();
    ANSWER AssetTagRoom();
    ANSWER FieldData();
    ANSWER SetFieldData();
    ANSWER AreaSize();
    ANSWER AreaData();
    ANSWER SetAreaData();
    ANSWER LoadProperties();
    ANSWER CountProperties();
    ANSWER SelectProperty();
    ANSWER AddFru();

  private:
    bool IsReady() const { return m_required == 0; }
    bool HasArea(int area) const;
    unsigned int AreasPresent() const;
    FRU_PLACE NextPlace();
    ANSWER FieldSelected(EFI_STATUS status);
    void MakeTexts();
    void CheckCursor() const;

    _EFI_FRU_INTERFACE* m_table;
    CInput& m_input;
    CURSOR m_cursor;
    EFI_STATUS m_required = 0; ///< of the operation that is being called
    unsigned int m_loads = 0;
    std::uint64_t m_digest = DigestFrus();
    BYTES m_text;
    BYTES m_strings; ///< the table made from it, once it is needed
};

} // namespace Frudata_Fuzz
