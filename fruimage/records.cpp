#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

RECORD ReadRecord(BYTE_VIEW image, std::size_t offset) {
    RECORD record;
    record.offset = offset;
    const BYTE_VIEW header = Slice(image, offset, RECORD_HEADER_SIZE);
    std::copy(header.begin(), header.end(), record.header.begin());
    const BYTE_VIEW data = Slice(image, offset + RECORD_HEADER_SIZE, record.Length());
    record.data.assign(data.begin(), data.end());
    record.cut = data.size() < record.Length();
    record.expectedHeaderChecksum = ZeroChecksum(BYTE_VIEW(record.header).first(RECORD_HEADER_SIZE - 1));
    record.expectedChecksum = ZeroChecksum(data);
    record.closing = record.Length() == 0 && record.HeaderChecksum() == record.expectedHeaderChecksum;
    return record;
}

void CheckRecord(const RECORD& record, std::size_t number, std::size_t imageSize, FINDINGS& findings) {
    const std::string name = Text("record ", number);
    if (record.HeaderChecksum() != record.expectedHeaderChecksum)
        WrongByte(findings, "record-header-checksum", AREA_ID::MULTIRECORD, record.offset + 4, record.HeaderChecksum(),
                  record.expectedHeaderChecksum, Text("header of ", name, ": checksum"));
    else if (record.Format() != RECORD_FORMAT && !record.closing)
        Note(findings, "record-version", AREA_ID::MULTIRECORD, record.offset + 1,
             Text(name, ": its format version is ", record.Format()));
    if (record.cut)
        Damage(findings, "area-past-end", AREA_ID::MULTIRECORD, record.offset,
               Text(name, " at ", PlaceText(record.offset), " passes the end of the image at ", PlaceText(imageSize)));
    else if (!record.closing && record.Checksum() != record.expectedChecksum)
        WrongByte(findings, "record-checksum", AREA_ID::MULTIRECORD, record.offset + 3, record.Checksum(),
                  record.expectedChecksum, Text(name, ": checksum"));
}

/// Whether a list without an end mark ends at `offset`.
bool EndsHere(const AREA& area, BYTE_VIEW image, std::size_t offset, FINDINGS& findings) {
    const BYTE_VIEW header = Slice(image, offset, RECORD_HEADER_SIZE);
    const std::string text = area.records.empty() ? "there is no record" : "no record is the last";
    if (IsFilledWith(header, 0) && header.size() == RECORD_HEADER_SIZE) {
        Note(findings, "no-end-of-list", AREA_ID::MULTIRECORD, offset, text + ": zeroes follow");
        return true;
    }
    if (header.size() < RECORD_HEADER_SIZE) {
        Damage(findings, "area-past-end", AREA_ID::MULTIRECORD, offset,
               Text("record ", area.records.size() + 1, " at ", PlaceText(offset), " passes the end of the image at ",
                    PlaceText(image.size())));
        return true;
    }
    const bool sound = ZeroChecksum(header) == 0;
    if (sound || area.records.empty())
        return false;
    const RECORD& before = area.records.back();
    if (before.HeaderChecksum() != before.expectedHeaderChecksum)
        return true; // its length is not certain, and nothing tells that a record follows
    if ((header[1] & 0x0F) == RECORD_FORMAT && header[2] <= image.size() - offset - RECORD_HEADER_SIZE)
        return false;
    Damage(findings, "no-end-of-list", AREA_ID::MULTIRECORD, offset, text + ", and what follows is no record");
    return true;
}

} // namespace

AREA ReadRecords(BYTE_VIEW image, std::size_t offset, FINDINGS& findings) {
    AREA area;
    area.id = AREA_ID::MULTIRECORD;
    area.offset = offset;
    std::size_t position = offset;
    while (!EndsHere(area, image, position, findings)) {
        area.records.push_back(ReadRecord(image, position));
        const RECORD& record = area.records.back();
        CheckRecord(record, area.records.size(), image.size(), findings);
        position += record.Size();
        if (record.IsLast() || record.closing || record.cut)
            break;
    }
    area.length = position - offset;
    area.declared = area.length;
    area.used = area.length;
    return area;
}

bool IsChain(const AREA& area) {
    const bool sound = std::all_of(area.records.begin(), area.records.end(), [](const RECORD& record) {
        return !record.cut && record.HeaderChecksum() == record.expectedHeaderChecksum &&
               (record.closing || record.Format() == RECORD_FORMAT);
    });
    return sound && !area.records.empty() && !area.records.front().closing &&
           (area.records.back().IsLast() || area.records.back().closing);
}

} // namespace FruImage
