// Changing the fields of an info area within its room.
#include "common/assertion.h"
#include "common/lasterror.h"
#include "frudata/areas/infoarea.h"

#include <cstring>

namespace Frudata_Private {

bool CInfoArea::HasRoom(UINTN length, UINT8 typeLength) const {
    return static_cast<int>(length) <= DecodeLength(typeLength) + GetPadLength();
}

bool CInfoArea::RefuseNull(const CTrace& trace) const {
    if (m_description.reportsRefusals) {
        trace.Fail(L"Unexpected");
        RecordLastError(STRING_UNEXPECTED);
    }
    return false;
}

bool CInfoArea::RefuseTooLong(const CTrace& trace, STRING_ID title) const {
    if (m_description.reportsRefusals) {
        trace.Fail(m_description.tooLong);
        RecordLastError(STRING_VALUE_TOO_LONG, GetText(title));
    }
    return false;
}

bool CInfoArea::RefuseMissing(const CTrace& trace) const {
    trace.Fail(L"No such FRU Field");
    RecordLastError(STRING_NO_SUCH_FIELD);
    return false;
}

void CInfoArea::RefuseNoMemory(const CTrace& trace) const {
    if (m_description.valueNoMemory) {
        trace.Fail(m_description.valueNoMemory);
        RecordLastError(STRING_OUT_OF_MEMORY);
    }
}

bool CInfoArea::SetField(UINTN index, const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
    const INFO_AREA_FIELD& row = m_description.fields[index];
    CFruField& field = m_fields[index];
    const CTrace trace = Trace(row.setter);
    if (!data)
        return RefuseNull(trace);
    if (length > MAX_FIELD_LENGTH || !HasRoom(length, field.GetTypeLength()))
        return RefuseTooLong(trace, row.title);
    if (!field.Assign(type, static_cast<UINT8>(length), data)) {
        if (m_description.reportsRefusals) {
            trace.Fail(L"FRU Error Allocation");
            RecordLastError(STRING_OUT_OF_MEMORY);
        }
        return false;
    }
    UpdateChecksum();
    return trace.Exit(true);
}

UINT32 CInfoArea::GetNumberOfCustomFields() const {
    return Trace(L"GetNumberOfCustomFields").Exit(m_custom.GetCount());
}

EFI_STATUS CInfoArea::GetCustomField(UINTN index, std::unique_ptr<WCHAR[]>& value) const {
    const CTrace trace = Trace(L"GetCustomField");
    value.reset();
    Assert(index <= m_custom.GetCount(), m_description.sourceFile, m_description.customIndexCondition);
    Assert(index < m_custom.GetCount(), m_description.sourceFile, m_description.customPositionCondition);
    const CFruCustomField* field = m_custom.Find(index);
    Assert(field != nullptr, m_description.sourceFile, "pCustomField");
    value = ToDisplayText(field->m_data);
    if (value)
        return trace.Exit(FRU_STATUS_SUCCESS);
    if (m_description.customValueNoMemory)
        trace.Fail(m_description.customValueNoMemory);
    RecordLastError(STRING_OUT_OF_MEMORY);
    return FRU_STATUS_OUT_OF_MEMORY;
}

bool CInfoArea::AddCustomField(const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
    const CTrace trace = Trace(L"AddCustomField");
    if (!data || length > MAX_FIELD_LENGTH || GetPadLength() < static_cast<int>(length))
        return false;
    CFruCustomField* field = m_custom.Append();
    if (!field)
        return false;
    field->m_typeLength = static_cast<UINT8>(type | length);
    std::memcpy(field->m_data, data, length);
    m_custom.Count();
    UpdateChecksum();
    return trace.Exit(true);
}

bool CInfoArea::SetCustomField(UINTN index, const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
    const CTrace trace = Trace(L"SetCustomField");
    if (!data)
        return RefuseNull(trace);
    if (length > MAX_FIELD_LENGTH)
        return RefuseTooLong(trace, m_description.customTitle);
    CFruCustomField* field = m_custom.Find(index);
    if (!field)
        return m_description.reportsRefusals ? RefuseMissing(trace) : false;
    if (!HasRoom(length, field->m_typeLength))
        return RefuseTooLong(trace, m_description.customTitle);
    // The value may be the field's own, from GetFieldData.
    std::memmove(field->m_data, data, length);
    field->m_data[length] = 0;
    field->m_typeLength = static_cast<UINT8>(type | length);
    UpdateChecksum();
    return trace.Exit(true);
}

bool CInfoArea::RemoveCustomField(UINTN index) {
    const CTrace trace = Trace(L"RemoveCustomField");
    Assert(m_custom.Find(index) != nullptr, m_description.sourceFile, "0");
    Assert(m_custom.GetCount() > 0, m_description.sourceFile, "m_NumOfCustomFields");
    m_custom.Remove(index);
    return trace.Exit(true);
}

} // namespace Frudata_Private
