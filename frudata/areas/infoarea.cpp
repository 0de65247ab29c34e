// Accessors, image and checksum of an info area, and its fields as the cursor sees them.
#include "frudata/areas/infoarea.h"

#include "common/assertion.h"
#include "common/bytesum.h"
#include "common/lasterror.h"

#include <algorithm>
#include <cstring>

namespace Frudata_Private {

namespace {

/// Two's complement of the end marker, which alone of the bytes behind the fields counts in the sum of the image.
constexpr UINT8 MARKER_COMPLEMENT = 0x3F;
/// The end marker and the checksum byte.
constexpr int TAIL_SIZE = 2;

} // namespace

UINT8 CInfoArea::Sum() const {
    UINTN sum = ByteSum(m_header, m_description.headerSize);
    ForEachField([&sum](UINT8 typeLength, const UINT8* data) {
        sum += typeLength;
        sum += ByteSum(data, DecodeLength(typeLength));
    });
    return static_cast<UINT8>(sum);
}

UINT8 CInfoArea::UpdateChecksum() {
    const CTrace trace = Trace(L"UpdateChecksum");
    m_checksum = static_cast<UINT8>(MARKER_COMPLEMENT - Sum());
    return trace.Exit(m_checksum);
}

bool CInfoArea::IsValid() const {
    const CTrace trace = Trace(L"IsValid");
    return trace.Exit(static_cast<UINT8>(Sum() - MARKER_COMPLEMENT + m_checksum) == 0);
}

UINT8 CInfoArea::GetChecksum() const {
    return Trace(L"GetChecksum").Exit(m_checksum);
}

void CInfoArea::SetChecksum(UINT8 checksum) {
    const CTrace trace = Trace(L"SetChecksum");
    m_checksum = checksum;
    trace.Exit();
}

UINTN CInfoArea::GetLength() const {
    return Trace(L"GetLength").Exit(AreaLength());
}

bool CInfoArea::SetLength(UINTN bytes) {
    const CTrace trace = Trace(L"SetLength");
    if (bytes % 8 != 0)
        return false;
    m_header[HEADER_LENGTH] = static_cast<UINT8>(bytes / 8);
    UpdateChecksum();
    return trace.Exit(true);
}

int CInfoArea::GetPadLength() const {
    const CTrace trace = Trace(L"GetPadLength");
    int used = static_cast<int>(m_description.headerSize) + TAIL_SIZE;
    ForEachField([&used](UINT8 typeLength, const UINT8*) { used += 1 + DecodeLength(typeLength); });
    const int padding = static_cast<int>(AreaLength()) - used;
    Assert(padding >= 0 || !m_description.assertsPadding, m_description.sourceFile, "padding >= 0");
    return trace.Exit(padding);
}

UINT8 CInfoArea::GetHeaderByte(const WCHAR* operation, UINTN place) const {
    return Trace(operation).Exit(m_header[place]);
}

bool CInfoArea::SetHeaderByte(const WCHAR* operation, UINTN place, UINT8 value) {
    const CTrace trace = Trace(operation);
    m_header[place] = value;
    UpdateChecksum();
    return trace.Exit(true);
}

UINT8 CInfoArea::GetFormatVersion() const {
    return GetHeaderByte(L"GetFormatVersion", HEADER_FORMAT_VERSION);
}

bool CInfoArea::SetFormatVersion(UINT8 version) {
    return SetHeaderByte(L"SetFormatVersion", HEADER_FORMAT_VERSION, version);
}

bool CInfoArea::IsModified() const {
    return Trace(L"IsModified").Exit(m_modified);
}

void CInfoArea::ResetIsModified() {
    const CTrace trace = Trace(L"ResetIsModified");
    m_modified = false;
    trace.Exit();
}

const UINT8* CInfoArea::GetField(const WCHAR* operation, UINTN index) const {
    return Trace(operation).Exit(m_fields[index].GetData());
}

UINT8 CInfoArea::GetFieldTL(const WCHAR* operation, UINTN index) const {
    return Trace(operation).Exit(m_fields[index].GetTypeLength());
}

const UINT8* CInfoArea::GetData() const {
    const CTrace trace = Trace(L"GetData");
    std::memset(m_image, 0, sizeof m_image);
    std::memcpy(m_image, m_header, m_description.headerSize);
    UINTN index = m_description.headerSize;
    const auto put = [this, &index](const UINT8* data, UINTN length) {
        const UINTN copied = std::min(length, INFO_AREA_SIZE - index);
        if (copied > 0)
            std::memcpy(m_image + index, data, copied);
        index += copied;
    };
    ForEachField([&put](UINT8 typeLength, const UINT8* data) {
        put(&typeLength, 1);
        put(data, DecodeLength(typeLength));
    });
    put(&END_OF_FIELDS, 1);
    Assert(AreaLength() > 0, m_description.sourceFile, "GetLength()");
    if (AreaLength() <= INFO_AREA_SIZE)
        m_image[AreaLength() - 1] = m_checksum;
    return trace.Exit(m_image);
}

UINTN CInfoArea::GetNumberOfFields() const {
    return Trace(L"GetNumberOfFields").Exit(NumberOfFields());
}

UINTN CInfoArea::GetFieldIndexFromEnum(FRU_FIELD field) const {
    const CTrace trace = Trace(L"GetFieldIndexFromEnum");
    const UINTN index = static_cast<UINTN>(field) - static_cast<UINTN>(m_description.firstField);
    if (index < m_description.fields.size())
        return trace.Exit(index);
    Assert(!m_description.assertsFieldSelection, m_description.sourceFile, "0");
    return NO_FIELD_INDEX;
}

const WCHAR* CInfoArea::GetFieldTitleFromIndex(UINTN index) const {
    const CTrace trace = Trace(L"GetFieldTitleFromIndex");
    if (index >= NumberOfFields()) {
        Assert(!m_description.assertsFieldSelection, m_description.sourceFile, "index < GetNumberOfFields( )");
        return nullptr;
    }
    const bool isFixed = index < m_description.fields.size();
    return trace.Exit(GetText(isFixed ? m_description.fields[index].title : m_description.customTitle));
}

const WCHAR* CInfoArea::GetFieldValueFromIndex(UINTN index) {
    const CTrace trace = Trace(L"GetFieldValueFromIndex");
    m_pValue.reset();
    if (IsHeaderField(index)) {
        m_pValue = HeaderFieldText(trace);
    } else if (index < m_description.fields.size()) {
        m_pValue = ToDisplayText(m_fields[index].GetData());
        if (!m_pValue)
            RefuseNoMemory(trace);
    } else if (index > NumberOfFields()) {
        RefuseMissing(trace);
    } else {
        GetCustomField(NumberOfFields() - index - 1, m_pValue);
    }
    if (m_pValue)
        trace.Exit();
    return m_pValue.get();
}

bool CInfoArea::GetFieldData(UINTN index, const UINT8*& data, UINTN& length) const {
    const CTrace trace = Trace(L"GetFieldData");
    const auto fixedFields = static_cast<UINTN>(m_description.fields.size());
    if (IsHeaderField(index)) {
        data = m_header + m_description.headerFieldOffset;
        length = m_description.headerFieldSize;
        return trace.Exit(true);
    }
    if (index < fixedFields) {
        data = m_fields[index].GetData();
        length = DecodeLength(m_fields[index].GetTypeLength());
        return trace.Exit(true);
    }
    // Compatibility: every custom index after the first returns the second custom field.
    const CFruCustomField* field = nullptr;
    if (index - fixedFields < m_custom.GetCount())
        field = m_custom.Find(index == fixedFields ? 0 : 1);
    data = field ? field->m_data : nullptr;
    length = field ? DecodeLength(field->m_typeLength) : 0;
    return field && trace.Exit(true);
}

bool CInfoArea::SetFieldData(UINTN index, const UINT8* data, UINTN length, FRU_FIELD_TYPE type) {
    const CTrace trace = Trace(L"SetFieldData");
    const auto fixedFields = static_cast<UINTN>(m_description.fields.size());
    if (IsHeaderField(index)) {
        if (!SetHeaderField(trace, data, length))
            return false;
        m_modified = m_modified || m_description.headerFieldMarksModified;
        return trace.Exit(true);
    }
    if (index < fixedFields) {
        if (!SetField(index, data, length, type))
            return false;
        m_modified = true;
        return trace.Exit(true);
    }
    Assert(index <= NumberOfFields() - 1, m_description.sourceFile, "index <= GetNumberOfFields( ) - 1");
    Assert(index >= fixedFields - 1, m_description.sourceFile, "index >= NUMBER_OF_FIELDS - 1");
    if (!SetCustomField(NumberOfFields() - index - 1, data, length, type))
        return false;
    m_modified = m_modified || m_description.customFieldsMarkModified;
    return trace.Exit(true);
}

} // namespace Frudata_Private
