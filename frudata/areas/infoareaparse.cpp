// Parsing an info area from its image.
#include "common/assertion.h"
#include "frudata/areas/infoarea.h"

#include <cstring>

namespace Frudata_Private {

bool CInfoArea::SetData(const UINT8* data, UINTN length) {
    const CTrace trace = Trace(L"SetData");
    if (length > INFO_AREA_SIZE || length == 0 || !ParseHeader(data, length))
        return false;
    UINTN index = m_description.headerSize;
    for (UINTN field = 0; field < m_description.fields.size(); ++field) {
        if (!IsHeaderField(field) && !ParseField(data, length, index, m_fields[field]))
            return false;
    }
    if (!ParseCustomField(data, length, index) || index >= length || data[index] != END_OF_FIELDS)
        return false;
    ++index;
    EndOfFieldsFound(index);
    if (!ParseTail(data, length, index))
        return false;
    Assert(IsValid(), m_description.sourceFile, "IsValid()");
    return trace.Exit(true);
}

bool CInfoArea::ParseHeader(const UINT8* data, UINTN length) {
    m_header[HEADER_FORMAT_VERSION] = data[HEADER_FORMAT_VERSION];
    if (length <= HEADER_LENGTH)
        return false;
    m_header[HEADER_LENGTH] = data[HEADER_LENGTH];
    if (AreaLength() < length || AreaLength() > INFO_AREA_SIZE || length <= HEADER_LANGUAGE_OR_TYPE)
        return false;
    m_header[HEADER_LANGUAGE_OR_TYPE] = data[HEADER_LANGUAGE_OR_TYPE];
    if (m_description.headerSize == OTHER_HEADER_SIZE)
        return true;
    if (length <= m_description.headerSize)
        return false;
    std::memcpy(&m_header[HEADER_MFG_DATE_TIME], &data[HEADER_MFG_DATE_TIME],
                m_description.headerSize - HEADER_MFG_DATE_TIME);
    return true;
}

bool CInfoArea::ParseField(const UINT8* data, UINTN length, UINTN& index, CFruField& field) {
    const CTrace trace = Trace(L"ParseField");
    if (index >= length)
        return false;
    const UINT8 typeLength = data[index];
    const UINT8 fieldLength = DecodeLength(typeLength);
    const UINTN end = index + 1 + fieldLength;
    // Something must follow a field: the next one or the end marker.
    if (end >= length || !field.Assign(typeLength & FIELD_TYPE_MASK, fieldLength, data + index + 1))
        return false;
    index = end;
    return trace.Exit(true);
}

bool CInfoArea::ParseCustomField(const UINT8* data, UINTN length, UINTN& index) {
    const CTrace trace = Trace(L"ParseCustomField");
    m_custom.Clear();
    while (index < length && data[index] != END_OF_FIELDS) {
        CFruCustomField* field = m_custom.Append();
        if (!field)
            return false;
        const UINT8 typeLength = data[index++];
        const UINTN fieldLength = DecodeLength(typeLength);
        if (index + fieldLength >= length)
            return false;
        field->m_typeLength = typeLength;
        std::memcpy(field->m_data, data + index, fieldLength);
        index += fieldLength;
        m_custom.Count();
    }
    return trace.Exit(true);
}

bool CInfoArea::ParseTail(const UINT8* data, UINTN length, UINTN index) {
    if (index == length) {
        // A compact image stops here; its padding and checksum are still to come.
        if (AreaLength() <= length)
            return false;
        UpdateChecksum();
        return true;
    }
    for (; index < length - 1; ++index) {
        if (data[index] != 0)
            return false;
    }
    if (index != AreaLength() - 1)
        return false;
    m_checksum = data[index];
    return true;
}

} // namespace Frudata_Private
