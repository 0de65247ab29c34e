// Parsing an info area from its image.
#include "common/assertion.h"
#include "frudata/areas/infoarea.h"

#include <cstring>

namespace Frudata_Private {

bool CInfoArea::SetData(const UINT8* data, UINTN length) {
    const CTrace trace = Trace(L"SetData");
    const std::span<const UINT8> image(data, length);
    if (length > INFO_AREA_SIZE || length == 0 || !ParseHeader(image))
        return false;
    UINTN index = m_description.headerSize;
    for (UINTN field = 0; field < m_description.fields.size(); ++field) {
        if (!IsHeaderField(field) && !ParseField(image, index, m_fields[field]))
            return false;
    }
    if (!ParseCustomField(image, index) || index >= length || image[index] != END_OF_FIELDS)
        return false;
    ++index;
    EndOfFieldsFound(index);
    if (!ParseTail(image, index))
        return false;
    Assert(IsValid(), m_description.sourceFile, "IsValid()");
    return trace.Exit(true);
}

bool CInfoArea::ParseHeader(std::span<const UINT8> image) {
    m_header[HEADER_FORMAT_VERSION] = image[HEADER_FORMAT_VERSION];
    if (image.size() <= HEADER_LENGTH)
        return false;
    m_header[HEADER_LENGTH] = image[HEADER_LENGTH];
    if (AreaLength() < image.size() || AreaLength() > INFO_AREA_SIZE || image.size() <= HEADER_LANGUAGE_OR_TYPE)
        return false;
    m_header[HEADER_LANGUAGE_OR_TYPE] = image[HEADER_LANGUAGE_OR_TYPE];
    if (m_description.headerSize == OTHER_HEADER_SIZE)
        return true;
    if (image.size() <= m_description.headerSize)
        return false;
    std::memcpy(&m_header[HEADER_MFG_DATE_TIME], &image[HEADER_MFG_DATE_TIME],
                m_description.headerSize - HEADER_MFG_DATE_TIME);
    return true;
}

bool CInfoArea::ParseField(std::span<const UINT8> image, UINTN& index, CFruField& field) {
    const CTrace trace = Trace(L"ParseField");
    if (index >= image.size())
        return false;
    const UINT8 typeLength = image[index];
    const UINT8 fieldLength = DecodeLength(typeLength);
    const UINTN end = index + 1 + fieldLength;
    // Something must follow a field: the next one or the end marker.
    if (end >= image.size() || !field.Assign(typeLength & FIELD_TYPE_MASK, fieldLength, &image[index + 1]))
        return false;
    index = end;
    return trace.Exit(true);
}

bool CInfoArea::ParseCustomField(std::span<const UINT8> image, UINTN& index) {
    const CTrace trace = Trace(L"ParseCustomField");
    m_custom.Clear();
    while (index < image.size() && image[index] != END_OF_FIELDS) {
        CFruCustomField* field = m_custom.Append();
        if (!field)
            return false;
        const UINT8 typeLength = image[index++];
        const UINTN fieldLength = DecodeLength(typeLength);
        if (index + fieldLength >= image.size())
            return false;
        field->m_typeLength = typeLength;
        std::memcpy(field->m_data, &image[index], fieldLength);
        index += fieldLength;
        m_custom.Count();
    }
    return trace.Exit(true);
}

bool CInfoArea::ParseTail(std::span<const UINT8> image, UINTN index) {
    if (index == image.size()) {
        // A compact image stops here and still needs its padding and checksum.
        if (AreaLength() <= image.size())
            return false;
        UpdateChecksum();
        return true;
    }
    for (; index < image.size() - 1; ++index) {
        if (image[index] != 0)
            return false;
    }
    if (index != AreaLength() - 1)
        return false;
    m_checksum = image[index];
    return true;
}

} // namespace Frudata_Private
