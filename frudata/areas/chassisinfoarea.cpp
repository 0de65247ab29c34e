#include "frudata/areas/chassisinfoarea.h"

#include "common/allocate.h"
#include "common/assertion.h"
#include "common/stringresource.h"

#include <cwchar>

namespace Frudata_Private {

namespace {

constexpr UINT8 LAST_CHASSIS_TYPE = 23;
/// Distance from a type to the number of its name in the string table.
constexpr UINT32 TYPE_NAME_DISTANCE = STRING_CHASSIS_TYPE_1 - 1;

constexpr INFO_AREA_FIELD CHASSIS_FIELDS[] = {
    {STRING_CHASSIS_TYPE, L"SetType"},
    {STRING_CHASSIS_PART_NUMBER, L"SetPartNumber"},
    {STRING_CHASSIS_SERIAL_NUMBER, L"SetSerialNumber"},
};
static_assert(std::size(CHASSIS_FIELDS) == CChassisInfoArea::NUMBER_OF_FIELDS);

constexpr INFO_AREA_DESCRIPTION CHASSIS_DESCRIPTION = {
    .className = L"CChassisInfoArea",
    .sourceFile = "chassisinfoarea.cpp",
    .firstField = FRU_FIELD_CHASSIS_TYPE,
    .fields = CHASSIS_FIELDS,
    .customTitle = STRING_CHASSIS_CUSTOM_FIELD,
    .headerSize = OTHER_HEADER_SIZE,
    .headerFieldOffset = HEADER_LANGUAGE_OR_TYPE,
    .headerFieldSize = 1,
    .headerFieldMarksModified = true,
    .customFieldsMarkModified = true,
    .assertsFieldSelection = false,
    .assertsPadding = false,
    .customIndexCondition = "nIndexOfFieldToGet <= m_NumOfCustomFields",
    .customPositionCondition = "nCurFieldIndex < m_NumOfCustomFields",
    .reportsRefusals = false,
    .tooLong = nullptr,
    .valueNoMemory = nullptr,
    .customValueNoMemory = L"FRU Error Allocation",
};
static_assert(IsWithinCapacity(CHASSIS_DESCRIPTION));

} // namespace

CChassisInfoArea::CChassisInfoArea() : CInfoArea(CHASSIS_DESCRIPTION) {}

bool CChassisInfoArea::SetType(UINT8 type) {
    const CTrace trace = Trace(L"SetType");
    if (type == 0 || type > LAST_CHASSIS_TYPE)
        return false;
    m_header[HEADER_LANGUAGE_OR_TYPE] = type;
    UpdateChecksum();
    return trace.Exit(true);
}

const WCHAR* CChassisInfoArea::GetChassisString() const {
    const CTrace trace = Trace(L"GetChassisString");
    const UINT8 type = m_header[HEADER_LANGUAGE_OR_TYPE];
    // Compatibility: types 10 to 15 and 23 can be stored but have no name.
    const bool isNamed = (type >= 1 && type <= 9) || (type >= 16 && type < LAST_CHASSIS_TYPE);
    Assert(isNamed, CHASSIS_DESCRIPTION.sourceFile, "0");
    return trace.Exit(GetText(type + TYPE_NAME_DISTANCE));
}

bool CChassisInfoArea::SetHeaderField(const CTrace&, const UINT8* data, UINTN length) {
    return data && length == 1 && SetType(data[0]);
}

std::unique_ptr<WCHAR[]> CChassisInfoArea::HeaderFieldText(const CTrace&) const {
    const WCHAR* name = GetChassisString();
    if (!name)
        return nullptr;
    const std::size_t size = std::wcslen(name) + 1;
    std::unique_ptr<WCHAR[]> text = AllocateArray<WCHAR>(size);
    if (text)
        std::wmemcpy(text.get(), name, size);
    return text;
}

} // namespace Frudata_Private
