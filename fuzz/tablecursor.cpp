// The operations that move or tell the cursor.
#include "fuzz/tablemodel.h"

namespace Frudata_Fuzz {

using namespace Frudata_Private;

namespace {

/// Of what is selected by its number.
ANSWER Selected(EFI_STATUS status, bool isThere) {
    return {status, status == (isThere ? 0 : FRU_STATUS_NO_SUCH_FIELD)};
}

bool HasArea(HOST& host, int area) {
    static constexpr EFI_STATUS (*TABLE::*OPERATIONS[])(TABLE*, bool&) = {
        &TABLE::HasInternalUseArea, &TABLE::HasChassisArea, &TABLE::HasBoardArea, &TABLE::HasProductArea,
        &TABLE::HasMultiRecordArea};
    bool isThere = false;
    Require((host.table->*OPERATIONS[area - FRU_AREA_INTERNAL_USE])(host.table, isThere) == 0);
    return isThere;
}

std::vector<int> AreasPresent(HOST& host) {
    std::vector<int> present;
    for (int area = FRU_AREA_INTERNAL_USE; host.IsReady() && area <= FRU_AREA_MULTIRECORD; ++area)
        if (HasArea(host, area))
            present.push_back(area);
    return present;
}

ANSWER SelectList(HOST& host) {
    const int list = host.input.Byte() % 8 - 1;
    const EFI_STATUS status = host.Call(&TABLE::SelectList, list);
    const bool isList = list == FRU_LIST_SYSTEM || list == FRU_LIST_FILE;
    if (host.IsReady()) {
        host.cursor.list = isList ? list : FRU_LIST_NONE;
        host.cursor.SelectFru(CURSOR_NONE);
    }
    return Selected(status, isList);
}

ANSWER CountFrus(HOST& host) {
    unsigned int first = 99, second = 99;
    const EFI_STATUS status = host.Call(&TABLE::GetNumberOfFrus, first, second);
    const unsigned int count = host.cursor.frus[host.cursor.list];
    return {status, status == 0 && second == count && first == (host.cursor.list == FRU_LIST_SYSTEM ? 0 : count)};
}

ANSWER FruSelected(HOST& host, EFI_STATUS status, UINT32 index) {
    const bool isThere = index < host.cursor.frus[host.cursor.list];
    if (host.IsReady())
        host.cursor.SelectFru(isThere ? index : CURSOR_NONE);
    return Selected(status, isThere);
}

ANSWER SelectFru(HOST& host) {
    const UINT8 number = host.input.Byte();
    const unsigned int index = number == 0xFF ? CURSOR_NONE : number % 8;
    return FruSelected(host, host.Call(&TABLE::SelectFru, index), index);
}

ANSWER SelectFruByAddress(HOST& host) {
    const FRU_PLACE place = NextPlace(host.input);
    const EFI_STATUS status = host.Call(&TABLE::SelectFruByAddress, place.type, place.lun, place.address, place.bus,
                                        place.controller, place.id, 0x55, 0xAAAA);
    UINT32 index = 0;
    while (CFru* fru = host.IsReady() ? (*g_FruData->m_pCurrentList)[index] : nullptr) {
        const FRU_LOCATOR& at = *fru->GetDevLocator();
        if (place == FRU_PLACE{at.type, at.lun, at.deviceAddress, at.bus, at.controller, at.deviceId})
            break;
        ++index;
    }
    return FruSelected(host, status, index);
}

ANSWER Address(HOST& host) {
    FRU_PLACE place;
    UINT8 size = 0;
    UINT16 sizeAddress = 0;
    const EFI_STATUS status = host.Call(&TABLE::GetFruAddress, place.type, place.lun, place.address, place.bus,
                                        place.controller, place.id, size, sizeAddress);
    return {status, status == 0 && place.type <= FRU_TYPE_NONE};
}

ANSWER CountAreas(HOST& host) {
    unsigned int count = 99;
    const EFI_STATUS status = host.Call(&TABLE::GetNumberOfAreas, count);
    return {status, status == 0 && count == AreasPresent(host).size()};
}

ANSWER SelectArea(HOST& host) {
    const int area = host.input.Byte() % 9 - 1;
    const EFI_STATUS status = host.Call(&TABLE::SelectAreaEnum, static_cast<FRU_AREA>(area));
    const bool isArea = area >= FRU_AREA_COMMON_HEADER && area <= FRU_AREA_MULTIRECORD;
    // That an area is absent shows later.
    if (host.IsReady())
        host.cursor.SelectArea(isArea && (area == FRU_AREA_COMMON_HEADER || HasArea(host, area)) ? area
                                                                                                 : FRU_AREA_NONE);
    return Selected(status, isArea);
}

ANSWER SelectAreaInteger(HOST& host) {
    const unsigned int n = host.input.Byte() % 7;
    const EFI_STATUS status = host.Call(&TABLE::SelectAreaInteger, n);
    const std::vector<int> present = AreasPresent(host);
    if (host.IsReady())
        host.cursor.SelectArea(n < present.size() ? present[n] : FRU_AREA_NONE);
    return Selected(status, n < present.size());
}

ANSWER AreaName(HOST& host) {
    const ANSWER answer = Text<&TABLE::GetAreaName>(host);
    return Selected(answer.status, host.cursor.area != FRU_AREA_COMMON_HEADER);
}

ANSWER CountFields(HOST& host) {
    unsigned int count = 99;
    const EFI_STATUS status = host.Call(&TABLE::GetNumberOfFields, count);
    if (host.cursor.area == FRU_AREA_COMMON_HEADER)
        return {status, status == FRU_STATUS_NO_SUCH_FIELD && count == 0};
    // An internal use area may be empty.
    return {status, status == 0 && (count > 0 ? host.cursor.HasFields() : !host.cursor.IsInfoArea())};
}

ANSWER FieldSelected(HOST& host, EFI_STATUS status) {
    if (!host.IsReady())
        return {status, true};
    unsigned int fields = 0;
    host.cursor.field = CURSOR_NONE;
    if (!host.cursor.HasFields())
        return {status, status == FRU_STATUS_UNSUPPORTED};
    if (status == 0) {
        host.cursor.field = g_FruData->m_nField;
        host.Call(&TABLE::GetNumberOfFields, fields);
    }
    return {status, status == FRU_STATUS_NO_SUCH_FIELD || (status == 0 && host.cursor.field < std::max(1U, fields))};
}

ANSWER SelectField(HOST& host) {
    // Many a selector of another area is an assertion.
    static constexpr UINT8 FIRST[] = {0, 0, 1, 2, 5, 11, 1}, COUNT[] = {1, 1, 1, 3, 6, 7, 17};
    const UINT8 number = host.input.Byte();
    const int area = host.cursor.area;
    const int field = number & 0x80 ? number & 0x1F : FIRST[area] + number % COUNT[area];
    return FieldSelected(host, host.Call(&TABLE::SelectFieldEnum, static_cast<FRU_FIELD>(field)));
}

ANSWER SelectFieldInteger(HOST& host) {
    const unsigned int n = host.input.Byte();
    const ANSWER answer = FieldSelected(host, host.Call(&TABLE::SelectFieldInteger, n));
    return {answer.status, answer.isAllowed && (answer.status != 0 || !host.IsReady() || host.cursor.field == n)};
}

ANSWER LoadProperties(HOST& host) {
    const EFI_STATUS status = host.Call(&TABLE::LoadPropertiesFromSystem);
    host.cursor.hasProperties = host.cursor.hasProperties || status == 0;
    return {status, status == 0};
}

ANSWER CountProperties(HOST& host) {
    unsigned int count = 0;
    const EFI_STATUS status = host.Call(&TABLE::GetNumberOfProperties, count);
    return {status, status == 0 && count == 3};
}

ANSWER SelectProperty(HOST& host) {
    const unsigned int index = host.input.Byte() % 5;
    const EFI_STATUS status = host.Call(&TABLE::SelectProperty, index);
    if (host.IsReady())
        host.cursor.property = index < 3 ? index : CURSOR_NONE;
    return Selected(status, index < 3);
}

} // namespace

std::span<const ROW> CursorRows() {
    static constexpr ROW ROWS[] = {{15, NEEDS_LOAD, SelectList},
                                   {16, NEEDS_LIST, CountFrus},
                                   {17, NEEDS_LIST, SelectFru},
                                   {18, NEEDS_LIST, SelectFruByAddress},
                                   {19, NEEDS_FRU, Text<&TABLE::GetFruName>},
                                   {20, NEEDS_FRU, Address},
                                   {21, NEEDS_FRU, Flag<&TABLE::HasInternalUseArea>},
                                   {22, NEEDS_FRU, Flag<&TABLE::HasBoardArea>},
                                   {23, NEEDS_FRU, Flag<&TABLE::HasProductArea>},
                                   {24, NEEDS_FRU, Flag<&TABLE::HasChassisArea>},
                                   {25, NEEDS_FRU, Flag<&TABLE::HasMultiRecordArea>},
                                   {26, NEEDS_FRU, CountAreas},
                                   {27, NEEDS_FRU, SelectArea},
                                   {28, NEEDS_FRU, SelectAreaInteger},
                                   {29, NEEDS_AREA, AreaName},
                                   {30, NEEDS_AREA, CountFields},
                                   {31, NEEDS_AREA, SelectField},
                                   {32, NEEDS_AREA, SelectFieldInteger},
                                   {39, NEEDS_START, LoadProperties},
                                   {40, NEEDS_PROPERTIES, CountProperties},
                                   {41, NEEDS_PROPERTIES, SelectProperty},
                                   {42, NEEDS_PROPERTY, Text<&TABLE::GetPropertyTitle>},
                                   {43, NEEDS_PROPERTY, Text<&TABLE::GetPropertyValue>}};
    return ROWS;
}

} // namespace Frudata_Fuzz
