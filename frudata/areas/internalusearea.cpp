#include "frudata/areas/internalusearea.h"

#include "common/allocate.h"
#include "common/assertion.h"
#include "common/stringresource.h"
#include "common/trace.h"

#include <cstring>

namespace Frudata_Private {

namespace {

constexpr char SOURCE_FILE[] = "internalusearea.cpp";

constexpr CTraceSource TraceInternalUse(L"CInternalUseArea");

/// Writes bytes as two hexadecimal digits each, with a blank between two bytes.
void WriteHexadecimal(const UINT8* data, UINTN length, WCHAR* text) {
    constexpr WCHAR digits[] = L"0123456789ABCDEF";
    for (UINTN index = 0; index < length; ++index) {
        *text++ = digits[data[index] >> 4];
        *text++ = digits[data[index] & 0x0F];
        *text++ = index + 1 < length ? L' ' : 0;
    }
}

} // namespace

bool CInternalUseArea::SetData(const UINT8* data, UINTN length, bool setModified) {
    const CTrace trace = TraceInternalUse(L"SetData");
    Assert(length <= SIZE, SOURCE_FILE, "0");
    // The new content may come from the area's own buffer.
    std::memmove(m_data, data, length);
    std::memset(m_data + length, 0, SIZE - length);
    m_length = length;
    m_modified = m_modified || setModified;
    return trace.Exit(true);
}

const UINT8* CInternalUseArea::GetData() const {
    return TraceInternalUse(L"GetData").Exit(m_data);
}

UINTN CInternalUseArea::GetLength() const {
    return TraceInternalUse(L"GetLength").Exit(m_length);
}

bool CInternalUseArea::IsValid() const {
    return TraceInternalUse(L"IsValid").Exit(true);
}

bool CInternalUseArea::IsModified() const {
    return TraceInternalUse(L"IsModified").Exit(m_modified);
}

void CInternalUseArea::ResetIsModified() {
    const CTrace trace = TraceInternalUse(L"ResetIsModified");
    m_modified = false;
    trace.Exit();
}

UINTN CInternalUseArea::GetNumberOfFields() const {
    return TraceInternalUse(L"GetNumberOfFields").Exit(m_length > 0 ? NUMBER_OF_FIELDS : 0);
}

UINTN CInternalUseArea::GetFieldIndexFromEnum(FRU_FIELD field) const {
    const CTrace trace = TraceInternalUse(L"GetFieldIndexFromEnum");
    Assert(field == FRU_FIELD_INTERNAL_USE_DATA, SOURCE_FILE, "0");
    return trace.Exit(UINTN{0});
}

const WCHAR* CInternalUseArea::GetFieldTitleFromIndex(UINTN index) const {
    const CTrace trace = TraceInternalUse(L"GetFieldTitleFromIndex");
    Assert(index == 0, SOURCE_FILE, "0");
    return trace.Exit(GetText(STRING_INTERNAL_USE_DATA));
}

const WCHAR* CInternalUseArea::GetFieldValueFromIndex(UINTN index) {
    const CTrace trace = TraceInternalUse(L"GetFieldValueFromIndex");
    m_pValue.reset();
    if (index == 0) {
        m_pValue = AllocateArray<WCHAR>(3 * m_length + 1);
        if (m_pValue)
            WriteHexadecimal(m_data, m_length, m_pValue.get());
    }
    Assert(m_pValue != nullptr, SOURCE_FILE, "m_pValue");
    return trace.Exit(m_pValue.get());
}

} // namespace Frudata_Private
