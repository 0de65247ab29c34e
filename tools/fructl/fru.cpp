#include "tools/fructl/fru.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

/// Reads the fields of an info area up to the end marker. @return the position behind the marker; 0 where
/// there is none
std::size_t ParseFields(const AREA_ROW& row, AREA& area) {
    std::size_t position = row.headerLength;
    const BYTES& bytes = area.bytes;
    while (position < bytes.size()) {
        const UINT8 typeLength = bytes[position++];
        if (area.fields.size() >= row.fields.size() && typeLength == END_OF_FIELDS)
            return position;
        const std::size_t length = typeLength & 0x3FU;
        if (position + length >= bytes.size())
            return 0;
        const BYTE_VIEW data = Slice(bytes, position, length);
        area.fields.push_back({FIELD_KIND::TEXT, typeLength, BYTES(data.begin(), data.end())});
        position += length;
    }
    return 0;
}

/// The chassis type and the date stand before the fields with a type/length byte.
void ParseLeadingField(const AREA_ROW& row, AREA& area) {
    const FIELD_KIND kind = row.fields[0].kind;
    area.language = area.bytes[2];
    if (kind == FIELD_KIND::CHASSIS_TYPE)
        area.fields.push_back({kind, 0, {area.bytes[2]}});
    else if (kind == FIELD_KIND::DATE)
        area.fields.push_back({kind, 0, {area.bytes[3], area.bytes[4], area.bytes[5]}});
}

void CheckRecord(BYTE_VIEW record, std::size_t number, FRU& fru) {
    const BYTE_VIEW data = record.subspan(RECORD_HEADER_SIZE);
    const UINT8 headerChecksum = ZeroChecksum(record.first(4));
    if (headerChecksum != record[4])
        fru.Report(FRU_AREA_MULTIRECORD, "record-header-checksum",
                   fmt::format("header of record {}: checksum is {:02X}h and should be {:02X}h", number, record[4],
                               headerChecksum));
    const UINT8 dataChecksum = ZeroChecksum(data);
    if (dataChecksum != record[3])
        fru.Report(
            FRU_AREA_MULTIRECORD, "record-checksum",
            fmt::format("record {}: checksum is {:02X}h and should be {:02X}h", number, record[3], dataChecksum));
}

void ParseInternalUseArea(std::size_t offset, BYTE_VIEW image, FRU& fru) {
    const std::size_t length = InternalUseLength(fru.header);
    if (length == 0 || length > MAXIMUM_AREA) {
        fru.Report(FRU_AREA_INTERNAL_USE, "internal-length",
                   length == 0 ? "no later area says where it ends"
                               : fmt::format("its length of {} bytes is more than {}", length, MAXIMUM_AREA));
        return;
    }
    if (offset + length > image.size())
        fru.Report(
            FRU_AREA_INTERNAL_USE, "area-past-end",
            fmt::format("its {} bytes at {:03X}h pass the end of the image at {:03X}h", length, offset, image.size()));
    const BYTE_VIEW bytes = Slice(image, offset, length);
    AREA area{FRU_AREA_INTERNAL_USE, offset, BYTES(bytes.begin(), bytes.end()), {}};
    area.used = area.bytes.size();
    fru.areas.push_back(std::move(area));
}

void ParseInfoAreaAt(const AREA_ROW& row, std::size_t offset, BYTE_VIEW image, FRU& fru) {
    const std::size_t length = image[offset + 1] * OFFSET_UNIT;
    if (length == 0)
        fru.Report(row.area, "area-length-zero", "its length is 0");
    else if (offset + length > image.size())
        fru.Report(row.area, "area-past-end",
                   fmt::format("its length of {} bytes at {:03X}h passes the end of the image at {:03X}h", length,
                               offset, image.size()));
    else if (length > MAXIMUM_AREA)
        fru.Report(row.area, "area-too-long",
                   fmt::format("its length of {} bytes is more than {}", length, MAXIMUM_AREA));
    else
        fru.areas.push_back(ParseInfoArea(row, offset, image.subspan(offset, length), fru));
}

void CheckOverlaps(FRU& fru) {
    std::vector<const AREA*> sorted;
    for (const AREA& area : fru.areas)
        sorted.push_back(&area);
    std::sort(sorted.begin(), sorted.end(), [](const AREA* a, const AREA* b) { return a->offset < b->offset; });
    for (std::size_t index = 1; index < sorted.size(); ++index) {
        const std::size_t end = sorted[index - 1]->offset + sorted[index - 1]->bytes.size();
        if (end > sorted[index]->offset)
            fru.Report(sorted[index]->id, "areas-overlap",
                       fmt::format("it begins at {:03X}h, inside the {} area, which ends at {:03X}h",
                                   sorted[index]->offset, AreaName(sorted[index - 1]->id), end));
    }
}

} // namespace

const AREA* FRU::Find(FRU_AREA area) const {
    const auto found = std::find_if(areas.begin(), areas.end(), [&](const AREA& one) { return one.id == area; });
    return found == areas.end() ? nullptr : &*found;
}

const FIELD* FRU::Find(const FIELD_NAME& name) const {
    const AREA* area = Find(name.area);
    if (!area)
        return nullptr;
    const std::size_t position = name.part == FIELD_NAME::CUSTOM ? area->Row().fields.size() + name.index : name.index;
    return position < area->fields.size() ? &area->fields[position] : nullptr;
}

void FRU::Report(FRU_AREA area, std::string code, std::string text) {
    problems.push_back({area, std::move(code), std::move(text)});
}

std::string FRU::ProblemText() const {
    std::string text;
    for (const PROBLEM& problem : problems)
        text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", AreaName(problem.area), problem.text);
    return text;
}

bool CheckHeader(BYTE_VIEW header, FRU& fru) {
    if (header.size() < HEADER_SIZE) {
        fru.Report(FRU_AREA_COMMON_HEADER, "header-short", fmt::format("only {} bytes are there", header.size()));
        return false;
    }
    fru.header.assign(header.begin(), header.begin() + HEADER_SIZE);
    if ((header[0] & 0x07) != 1) {
        fru.Report(FRU_AREA_COMMON_HEADER, "not-a-fru",
                   fmt::format("format version is {} and should be 1", header[0] & 0x07));
        return false;
    }
    const UINT8 expected = ZeroChecksum(header.first(HEADER_SIZE - 1));
    if (expected == header[HEADER_SIZE - 1])
        return true;
    fru.Report(FRU_AREA_COMMON_HEADER, "header-checksum",
               fmt::format("checksum is {:02X}h and should be {:02X}h", header[HEADER_SIZE - 1], expected));
    return false;
}

std::size_t InternalUseLength(BYTE_VIEW header) {
    // The first area present ends it, not the nearest one: the same rule decides what is read and written.
    for (std::size_t byte = 2; byte <= 5; ++byte)
        if (header[byte] != 0)
            return header[byte] > header[1] ? (header[byte] - header[1]) * OFFSET_UNIT : 0;
    return 0;
}

AREA ParseInfoArea(const AREA_ROW& row, std::size_t offset, BYTE_VIEW bytes, FRU& fru) {
    AREA area{row.area, offset, BYTES(bytes.begin(), bytes.end()), {}};
    ParseLeadingField(row, area);
    const std::size_t end = ParseFields(row, area);
    area.checksum = bytes.back();
    area.expectedChecksum = ZeroChecksum(bytes.first(bytes.size() - 1));
    area.used = end + 1;
    if (end == 0)
        fru.Report(row.area, "no-end-marker", "its fields pass the end of the area");
    else if (std::any_of(bytes.begin() + static_cast<std::ptrdiff_t>(std::min(end, bytes.size() - 1)), bytes.end() - 1,
                         [](UINT8 byte) { return byte != 0; }))
        fru.Report(row.area, "padding", "the bytes behind its last field are not zero");
    if (area.checksum != area.expectedChecksum)
        fru.Report(row.area, "area-checksum",
                   fmt::format("checksum is {:02X}h and should be {:02X}h", area.checksum, area.expectedChecksum));
    while (area.fields.size() < row.fields.size())
        area.fields.push_back({row.fields[area.fields.size()].kind, 0, {}});
    return area;
}

AREA ParseMultiRecordArea(std::size_t offset, BYTE_VIEW bytes, bool whole, FRU& fru) {
    AREA area{FRU_AREA_MULTIRECORD, offset, {}, {}};
    std::size_t position = 0;
    bool last = false;
    while (whole ? position < bytes.size() : !last) {
        const BYTE_VIEW start = Slice(bytes, position, RECORD_HEADER_SIZE);
        const std::size_t length = start.size() < RECORD_HEADER_SIZE ? 0 : RECORD_HEADER_SIZE + start[2];
        if (length == 0 || position + length > bytes.size()) {
            fru.Report(FRU_AREA_MULTIRECORD, "area-past-end",
                       fmt::format("record {} at {:03X}h passes the end at {:03X}h", area.records.size() + 1,
                                   offset + position, offset + bytes.size()));
            break;
        }
        if (length == RECORD_HEADER_SIZE && !whole)
            break; // an empty record ends the chain
        area.records.push_back(position);
        CheckRecord(bytes.subspan(position, length), area.records.size(), fru);
        last = (start[1] & 0x80) != 0;
        position += length;
    }
    area.used = position;
    area.bytes.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(position));
    return area;
}

FRU ParseImage(BYTE_VIEW image) {
    FRU fru;
    fru.size = image.size();
    if (!CheckHeader(image, fru))
        return fru;
    for (const AREA_ROW& row : Areas()) {
        const std::size_t offset = image[row.headerByte] * OFFSET_UNIT;
        if (offset == 0)
            continue;
        if (offset + 2 > image.size())
            fru.Report(row.area, "area-past-end",
                       fmt::format("it begins at {:03X}h, past the end of the image at {:03X}h", offset, image.size()));
        else if (row.area == FRU_AREA_INTERNAL_USE)
            ParseInternalUseArea(offset, image, fru);
        else if (row.area == FRU_AREA_MULTIRECORD)
            fru.areas.push_back(ParseMultiRecordArea(offset, image.subspan(offset), false, fru));
        else
            ParseInfoAreaAt(row, offset, image, fru);
    }
    CheckOverlaps(fru);
    return fru;
}

} // namespace Fructl
