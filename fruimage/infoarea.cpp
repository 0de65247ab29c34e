#include "fruimage/parse.h"
#include "fruimage/text.h"

namespace FruImage {

namespace {

/// The chassis type and the date stand before the fields with a type/length byte.
void ReadLeadingField(AREA& area, BYTE_VIEW bytes) {
    const AREA_ROW& row = area.Row();
    area.language = row.hasLanguage && bytes.size() > 2 ? bytes[2] : BYTE{0};
    if (row.LeadingFields() == 0)
        return;
    const FIELD_KIND kind = row.fields[0].kind;
    const std::size_t place = kind == FIELD_KIND::DATE ? 3 : 2;
    const std::size_t size = row.headerLength - place;
    const BYTE_VIEW value = Slice(bytes, place, size);
    FIELD field{kind, ENCODING::BINARY, 0, area.offset + place, BYTES(value.begin(), value.end()), value.size() < size,
                {}};
    if (!field.cut)
        field.text = kind == FIELD_KIND::DATE ? DateText(value) : ChassisTypeText(value[0]);
    area.fields.push_back(std::move(field));
}

FIELD ReadField(const AREA& area, BYTE_VIEW bytes, std::size_t position) {
    const BYTE typeLength = bytes[position++];
    const std::size_t length = typeLength & MAXIMUM_FIELD;
    const BYTE_VIEW value = Slice(bytes, position, length);
    const ENCODING encoding = EncodingOf(typeLength, area.language);
    return {FIELD_KIND::TEXT,
            encoding,
            typeLength,
            area.offset + position,
            {value.begin(), value.end()},
            value.size() < length,
            DecodeText(encoding, value)};
}

/// Drops empty fields at the end of a list without an end marker: they are zeroes that nobody wrote as fields.
void DropZeroes(AREA& area) {
    while (area.fields.size() > area.Row().fields.size() && area.fields.back().typeLength == 0)
        area.fields.pop_back();
}

/// Reads fields up to the end marker. `bytes` are the area's without its checksum.
void ReadFields(AREA& area, BYTE_VIEW bytes) {
    for (std::size_t position = area.Row().headerLength; position < bytes.size();) {
        if (bytes[position] == END_OF_FIELDS) {
            area.ended = true;
            area.used = position + 2;
            const BYTE_VIEW padding = bytes.subspan(position + 1);
            area.padding.assign(padding.begin(), padding.end());
            return;
        }
        area.fields.push_back(ReadField(area, bytes, position));
        position += 1U + (bytes[position] & MAXIMUM_FIELD);
    }
    area.used = bytes.size() + 1;
    DropZeroes(area);
}

void CheckFields(const AREA& area, FINDINGS& findings) {
    const AREA_ROW& row = area.Row();
    const std::size_t marker = area.offset + area.used - 2;
    if (!area.ended)
        Damage(findings, "no-end-marker", area.id, area.offset, "its fields pass the end of the area");
    else if (area.fields.size() < row.fields.size())
        Note(findings, "fields-end-early", area.id, marker,
             Text("the end marker stands in place of ", row.fields[area.fields.size()].name));
    if (!IsFilledWith(area.padding, 0))
        Note(findings, "padding", area.id, marker + 1, "the bytes behind its last field are not zero");
    for (const FIELD& field : area.fields)
        if (field.encoding == ENCODING::TWO_BYTE_TEXT && field.bytes.size() % 2 != 0)
            Note(findings, "odd-text", area.id, field.offset, "two-byte text with an odd number of bytes");
}

/// The bytes of the area: as many as its length byte says, within the image.
BYTE_VIEW CheckLength(AREA& area, BYTE_VIEW image, std::size_t end, FINDINGS& findings) {
    area.declared = area.offset + 1 < image.size() ? image[area.offset + 1] * UNIT : 0;
    if (area.declared == 0) {
        Damage(findings, "area-length-zero", area.id, area.offset + 1, "its length is 0");
        return Slice(image, area.offset, std::min(end - area.offset, MAXIMUM_INFO_AREA));
    }
    if (area.declared > image.size() - area.offset)
        Damage(findings, "area-past-end", area.id, area.offset + 1,
               Text("its length of ", Count(area.declared, "byte"), " at ", PlaceText(area.offset),
                    " passes the end of the image at ", PlaceText(image.size())));
    return Slice(image, area.offset, area.declared);
}

} // namespace

AREA ReadInfoArea(const AREA_ROW& row, BYTE_VIEW image, std::size_t offset, std::size_t end, FINDINGS& findings) {
    AREA area;
    area.id = row.id;
    area.offset = offset;
    const BYTE_VIEW bytes = CheckLength(area, image, end, findings);
    area.length = bytes.size();
    if (Version(image[offset]) != FORMAT_VERSION)
        Note(findings, "area-version", row.id, offset, Text("its format version is ", Version(image[offset])));
    ReadLeadingField(area, bytes);
    ReadFields(area, bytes.first(bytes.size() - 1));
    if (area.declared == 0) { // its fields tell its length
        area.length = std::min(area.ended ? RoundUp(area.used) : UNIT, bytes.size());
        area.padding.clear();
        return area;
    }
    CheckFields(area, findings);
    if (area.declared > area.length)
        return area;
    area.checksum = bytes.back();
    area.expectedChecksum = ZeroChecksum(bytes.first(bytes.size() - 1));
    if (area.checksum != area.expectedChecksum)
        WrongByte(findings, "area-checksum", row.id, offset + area.length - 1, area.checksum, area.expectedChecksum,
                  "checksum");
    return area;
}

} // namespace FruImage
