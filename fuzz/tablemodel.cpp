// The frame around each call: its checks, the cursor, and what must not change; the operations of lists and cursors.
#include "fuzz/tablemodel.h"

#include <algorithm>

namespace Frudata_Fuzz {

using namespace Frudata_Private;

namespace {

/// FNV-1a.
struct CDigest {
    std::uint64_t value = 0xCBF29CE484222325;

    void Add(const UINT8* bytes, std::size_t count) {
        for (std::size_t index = 0; index < count; ++index)
            value = (value ^ bytes[index]) * 0x100000001B3;
    }
    void Add(const CInfoArea& area) {
        Add(area.GetHeader(), area.GetHeaderSize());
        area.ForEachField([this](UINT8 typeLength, const UINT8* data) {
            Add(&typeLength, 1);
            Add(data, typeLength & MAX_FIELD_LENGTH);
        });
        const UINT8 rest[] = {area.GetChecksum(), area.IsModified()};
        Add(rest, sizeof rest);
    }
    void Add(CFru& fru) {
        static UINT8 records[1 << 17];
        Add(fru.GetFRUHeader().GetData(), CFruHeader::FRU_HEADER_LENGTH);
        Add(fru.GetInternalUseArea().GetData(), fru.GetInternalUseArea().GetLength());
        for (const CInfoArea* area :
             {fru.GetInfoArea(FRU_AREA_CHASSIS), fru.GetInfoArea(FRU_AREA_BOARD), fru.GetInfoArea(FRU_AREA_PRODUCT)})
            Add(*area);
        UINTN length = sizeof records;
        Require(fru.SerializeMultiRecArea(records, length) == 0);
        Add(records, length);
    }
};

} // namespace

std::uint64_t DigestFrus() {
    CDigest digest;
    if (!g_FruData)
        return digest.value;
    const UINT32 level = LIBDBG_DEBUG_LEVEL;
    SetLibDebugLevel(0);
    for (const OrderedList<CFru*>* list : {g_FruData->m_pFileList.get(), g_FruData->m_pSystemList.get()})
        for (CFru* fru = list->First(); fru; fru = list->Next(fru))
            digest.Add(*fru);
    SetLibDebugLevel(level);
    return digest.value;
}

void CURSOR::ClearArea() {
    area = FRU_AREA_NONE;
    field = CURSOR_NONE;
}

void CURSOR::ClearFru() {
    fru = CURSOR_NONE;
    ClearArea();
}

EFI_STATUS CURSOR::Check(FUZZ_NEED need) const {
    if (need != NEEDS_NOTHING && start != UP)
        return FRU_STATUS_NOT_INITIALIZED;
    if (need >= NEEDS_PROPERTIES && !hasProperties)
        return FRU_STATUS_NOT_LOADED;
    if (need >= NEEDS_PROPERTIES)
        return need == NEEDS_PROPERTY && property == CURSOR_NONE ? FRU_STATUS_NOT_SELECTED : FRU_STATUS_SUCCESS;
    if (need >= NEEDS_LOAD && !isLoaded)
        return FRU_STATUS_NOT_LOADED;
    const bool isSelected = (need < NEEDS_LIST || list != FRU_LIST_NONE) && (need < NEEDS_FRU || fru != CURSOR_NONE) &&
                            (need < NEEDS_AREA || area != FRU_AREA_NONE) &&
                            (need < NEEDS_FIELD || field != CURSOR_NONE);
    return isSelected ? FRU_STATUS_SUCCESS : FRU_STATUS_NOT_SELECTED;
}

ANSWER CHost::SelectList() {
    const int list = m_input.Byte() % 8 - 1;
    const EFI_STATUS status = m_table->SelectList(m_table, list);
    const bool isList = list == FRU_LIST_SYSTEM || list == FRU_LIST_FILE;
    if (IsReady()) {
        m_cursor.list = isList ? list : FRU_LIST_NONE;
        m_cursor.ClearFru();
    }
    return {status, status == (isList ? 0 : FRU_STATUS_NO_SUCH_FIELD)};
}

ANSWER CHost::CountFrus() {
    unsigned int first = 99, second = 99;
    const EFI_STATUS status = m_table->GetNumberOfFrus(m_table, first, second);
    const unsigned int count = m_cursor.frus[m_cursor.list];
    return {status, status == 0 && second == count && first == (m_cursor.list == FRU_LIST_SYSTEM ? 0 : count)};
}

ANSWER CHost::SelectFru() {
    const UINT8 number = m_input.Byte();
    const unsigned int index = number == 0xFF ? CURSOR_NONE : number % 8;
    const EFI_STATUS status = m_table->SelectFru(m_table, index);
    const bool isThere = index < m_cursor.frus[m_cursor.list];
    if (IsReady()) {
        m_cursor.ClearFru();
        m_cursor.fru = isThere ? index : CURSOR_NONE;
    }
    return {status, status == (isThere ? 0 : FRU_STATUS_NO_SUCH_FIELD)};
}

ANSWER CHost::SelectFruByAddress() {
    const FRU_PLACE place = NextPlace();
    const EFI_STATUS status = m_table->SelectFruByAddress(m_table, place.type, place.lun, place.address, place.bus,
                                                          place.controller, place.id, 0x55, 0xAAAA);
    if (!IsReady())
        return {status, true};
    UINT32 index = 0;
    while (CFru* fru = (*g_FruData->m_pCurrentList)[index]) {
        const FRU_LOCATOR& at = *fru->GetDevLocator();
        if (at.type == place.type && at.lun == place.lun && at.deviceAddress == place.address && at.bus == place.bus &&
            at.controller == place.controller && at.deviceId == place.id)
            break;
        ++index;
    }
    const bool isThere = index < m_cursor.frus[m_cursor.list];
    m_cursor.ClearFru();
    m_cursor.fru = isThere ? index : CURSOR_NONE;
    return {status, status == (isThere ? 0 : FRU_STATUS_NO_SUCH_FIELD)};
}

ANSWER CHost::Address() {
    FRU_PLACE place;
    UINT8 size = 0;
    UINT16 sizeAddress = 0;
    const EFI_STATUS status = m_table->GetFruAddress(m_table, place.type, place.lun, place.address, place.bus,
                                                     place.controller, place.id, size, sizeAddress);
    return {status, status == 0 && place.type <= FRU_TYPE_NONE};
}

unsigned int CHost::AreasPresent() const {
    unsigned int present = 0;
    for (int area = FRU_AREA_INTERNAL_USE; IsReady() && area <= FRU_AREA_MULTIRECORD; ++area)
        present += HasArea(area);
    return present;
}

bool CHost::HasArea(int area) const {
    static constexpr EFI_STATUS (*_EFI_FRU_INTERFACE::*OPERATIONS[])(_EFI_FRU_INTERFACE*, bool&) = {
        &_EFI_FRU_INTERFACE::HasInternalUseArea, &_EFI_FRU_INTERFACE::HasChassisArea, &_EFI_FRU_INTERFACE::HasBoardArea,
        &_EFI_FRU_INTERFACE::HasProductArea, &_EFI_FRU_INTERFACE::HasMultiRecordArea};
    bool isThere = false;
    Require((m_table->*OPERATIONS[area - FRU_AREA_INTERNAL_USE])(m_table, isThere) == 0);
    return isThere;
}

ANSWER CHost::CountAreas() {
    unsigned int count = 99;
    const EFI_STATUS status = m_table->GetNumberOfAreas(m_table, count);
    return {status, status == 0 && count == AreasPresent()};
}

ANSWER CHost::SelectArea() {
    const int area = m_input.Byte() % 9 - 1;
    const EFI_STATUS status = m_table->SelectAreaEnum(m_table, static_cast<FRU_AREA>(area));
    const bool isArea = area >= FRU_AREA_COMMON_HEADER && area <= FRU_AREA_MULTIRECORD;
    if (IsReady()) {
        m_cursor.ClearArea();
        // That an area is absent shows later.
        if (isArea && (area == FRU_AREA_COMMON_HEADER || HasArea(area)))
            m_cursor.area = area;
    }
    return {status, status == (isArea ? 0 : FRU_STATUS_NO_SUCH_FIELD)};
}

ANSWER CHost::SelectAreaInteger() {
    const unsigned int n = m_input.Byte() % 7;
    const EFI_STATUS status = m_table->SelectAreaInteger(m_table, n);
    const bool isThere = n < AreasPresent();
    if (IsReady())
        m_cursor.ClearArea();
    unsigned int position = 0;
    for (int area = FRU_AREA_INTERNAL_USE; IsReady() && isThere && m_cursor.area == FRU_AREA_NONE; ++area) {
        if (HasArea(area) && position++ == n)
            m_cursor.area = area;
    }
    return {status, status == (isThere ? 0 : FRU_STATUS_NO_SUCH_FIELD)};
}

ANSWER CHost::AreaName() {
    const WCHAR* name = nullptr;
    const EFI_STATUS status = m_table->GetAreaName(m_table, name);
    return {status, status == (m_cursor.area == FRU_AREA_COMMON_HEADER ? FRU_STATUS_NO_SUCH_FIELD : 0)};
}

ANSWER CHost::CountFields() {
    unsigned int count = 99;
    const EFI_STATUS status = m_table->GetNumberOfFields(m_table, count);
    if (m_cursor.area == FRU_AREA_COMMON_HEADER)
        return {status, status == FRU_STATUS_NO_SUCH_FIELD && count == 0};
    // An internal use area may be empty.
    return {status, status == 0 && (count > 0 ? m_cursor.HasFields() : !m_cursor.IsInfoArea())};
}

ANSWER CHost::FieldSelected(EFI_STATUS status) {
    if (!IsReady())
        return {status, true};
    unsigned int fields = 0;
    m_cursor.field = CURSOR_NONE;
    if (!m_cursor.HasFields())
        return {status, status == FRU_STATUS_UNSUPPORTED};
    if (status == 0) {
        m_cursor.field = g_FruData->m_nField;
        m_table->GetNumberOfFields(m_table, fields);
    }
    return {status, status == FRU_STATUS_NO_SUCH_FIELD || (status == 0 && m_cursor.field < std::max(1U, fields))};
}

ANSWER CHost::SelectField() {
    // Many a selector of another area is an assertion.
    static constexpr UINT8 FIRST[] = {0, 0, 1, 2, 5, 11, 1}, COUNT[] = {1, 1, 1, 3, 6, 7, 17};
    const UINT8 number = m_input.Byte();
    const int field = number & 0x80 ? number & 0x1F : FIRST[m_cursor.area] + number % COUNT[m_cursor.area];
    return FieldSelected(m_table->SelectFieldEnum(m_table, static_cast<FRU_FIELD>(field)));
}

ANSWER CHost::SelectFieldInteger() {
    const unsigned int n = m_input.Byte();
    const ANSWER answer = FieldSelected(m_table->SelectFieldInteger(m_table, n));
    return {answer.status, answer.isAllowed && (answer.status != 0 || !IsReady() || m_cursor.field == n)};
}

ANSWER CHost::LoadProperties() {
    const EFI_STATUS status = m_table->LoadPropertiesFromSystem(m_table);
    m_cursor.hasProperties = m_cursor.hasProperties || status == 0;
    return {status, status == 0};
}

ANSWER CHost::CountProperties() {
    unsigned int count = 0;
    const EFI_STATUS status = m_table->GetNumberOfProperties(m_table, count);
    return {status, status == 0 && count == 3};
}

ANSWER CHost::SelectProperty() {
    const unsigned int index = m_input.Byte() % 5;
    const EFI_STATUS status = m_table->SelectProperty(m_table, index);
    if (IsReady())
        m_cursor.property = index < 3 ? index : CURSOR_NONE;
    return {status, status == (index < 3 ? 0 : FRU_STATUS_NO_SUCH_FIELD)};
}

} // namespace Frudata_Fuzz
