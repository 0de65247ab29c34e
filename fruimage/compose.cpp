#include "fruimage/compose.h"

#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

void Append(BYTES& bytes, BYTE_VIEW more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

/// Why the fields cannot be stored; empty where they can.
std::string FaultOfFields(const AREA_DESCRIPTION& area) {
    const AREA_ROW& row = AreaRow(area.id);
    const std::size_t leading = row.LeadingFields();
    for (std::size_t position = 0; position < area.fields.size(); ++position) {
        const FIELD_DESCRIPTION& field = area.fields[position];
        const std::string name = FieldNameText(FieldAt(area.id, position));
        if (position < leading) {
            const std::size_t size = row.fields[0].kind == FIELD_KIND::DATE ? 3 : 1;
            if (field.bytes.size() != size)
                return Text(name, " has ", Count(size, "byte"));
        } else if (field.bytes.size() > MAXIMUM_FIELD)
            return Text(name, " has ", field.bytes.size(), " bytes, a field holds ", MAXIMUM_FIELD);
        else if (ReadsAsEnd(field))
            return Text(name, ": a text of one byte would read as the end of the fields");
    }
    return {};
}

/// All bytes before the padding.
BYTES ComposeFields(const AREA_DESCRIPTION& area) {
    const AREA_ROW& row = AreaRow(area.id);
    const std::size_t leading = row.LeadingFields();
    BYTES bytes = {area.version, 0};
    if (row.hasLanguage)
        bytes.push_back(area.language);
    if (leading != 0 && !area.fields.empty())
        Append(bytes, area.fields[0].bytes);
    bytes.resize(row.headerLength);
    for (std::size_t position = leading; position < area.fields.size(); ++position) {
        const FIELD_DESCRIPTION& field = area.fields[position];
        bytes.push_back(TypeLength(field.encoding, field.bytes.size()));
        Append(bytes, field.bytes);
    }
    if (!area.endsEarly)
        for (std::size_t position = std::max(leading, area.fields.size()); position < row.fields.size(); ++position)
            bytes.push_back(EMPTY_FIELD);
    bytes.push_back(END_OF_FIELDS);
    return bytes;
}

Result<BYTES> ComposeInfoArea(const AREA_DESCRIPTION& area) {
    std::string fault = FaultOfFields(area);
    if (!fault.empty())
        return Refuse(REFUSAL::BAD_DESCRIPTION, area.id, std::move(fault));
    BYTES bytes = ComposeFields(area);
    const std::size_t least = bytes.size() + 1 + area.padding.size();
    const std::size_t length = area.length != 0 ? area.length : RoundUp(std::max(least, NeededSize(area) + area.spare));
    if (length % UNIT != 0 || least > length)
        return Refuse(REFUSAL::BAD_DESCRIPTION, area.id,
                      Text("it needs ", Count(least, "byte"), ", in units of ", UNIT, ", and should have ", length));
    if (length > MAXIMUM_INFO_AREA)
        return Refuse(REFUSAL::NOT_ADDRESSABLE, area.id,
                      Text("it would have ", length, " bytes, an area holds ", MAXIMUM_INFO_AREA));
    bytes[1] = static_cast<BYTE>(length / UNIT);
    Append(bytes, area.padding);
    bytes.resize(length);
    bytes.back() = ZeroChecksum(BYTE_VIEW(bytes).first(length - 1));
    return bytes;
}

FIELD_DESCRIPTION DescribeField(const FIELD& field) {
    return {field.encoding, field.bytes};
}

RECORD_DESCRIPTION DescribeRecord(const RECORD& record, bool isLast) {
    RECORD_DESCRIPTION description{record.Type(), {}, record.data, {}};
    if (record.header[1] != (RECORD_FORMAT | (isLast ? END_OF_LIST : 0)))
        description.flags = record.header[1];
    if (record.Checksum() != record.expectedChecksum)
        description.checksum = record.Checksum();
    return description;
}

} // namespace

std::size_t NeededSize(const AREA_DESCRIPTION& area) {
    if (!area.bytes.empty())
        return area.bytes.size();
    if (AreaRow(area.id).IsInfo())
        return ComposeFields(area).size() + 1;
    std::size_t size = 0;
    for (const RECORD_DESCRIPTION& record : area.records)
        size += RECORD_HEADER_SIZE + record.data.size();
    return size;
}

void AppendRecord(BYTES& chain, const RECORD_DESCRIPTION& record, bool isLast) {
    const auto flags = static_cast<BYTE>(RECORD_FORMAT | (isLast ? END_OF_LIST : 0));
    const BYTE header[] = {record.type, record.flags.value_or(flags), static_cast<BYTE>(record.data.size()),
                           record.checksum.value_or(ZeroChecksum(record.data))};
    Append(chain, header);
    chain.push_back(ZeroChecksum(header));
    Append(chain, record.data);
}

Result<BYTES> ComposeArea(const AREA_DESCRIPTION& area) {
    if (!area.bytes.empty())
        return area.bytes;
    if (AreaRow(area.id).IsInfo())
        return ComposeInfoArea(area);
    BYTES chain;
    for (const RECORD_DESCRIPTION& record : area.records) {
        if (record.data.size() > MAXIMUM_RECORD_DATA)
            return Refuse(
                REFUSAL::BAD_DESCRIPTION, area.id,
                Text("a record has ", record.data.size(), " bytes of data, ", MAXIMUM_RECORD_DATA, " at most"));
        AppendRecord(chain, record, &record == &area.records.back());
    }
    return chain;
}

AREA_DESCRIPTION DescribeArea(const FRU& fru, const AREA& area) {
    AREA_DESCRIPTION description;
    description.id = area.id;
    description.offset = area.offset;
    const BYTE_VIEW bytes = fru.View(area.Range());
    if (area.IsInfo() && area.ended && !bytes.empty()) {
        description.length = area.length;
        description.version = bytes[0];
        description.language = area.language;
        for (const FIELD& field : area.fields)
            description.fields.push_back(DescribeField(field));
        description.endsEarly = area.fields.size() < area.Row().fields.size();
        if (!IsFilledWith(area.padding, 0))
            description.padding = area.padding;
    }
    for (const RECORD& record : area.records)
        description.records.push_back(DescribeRecord(record, &record == &area.records.back()));
    const Result<BYTES> composed = ComposeArea(description);
    if (area.id == AREA_ID::INTERNAL_USE || !composed ||
        !std::equal(composed->begin(), composed->end(), bytes.begin(), bytes.end()))
        description.bytes.assign(bytes.begin(), bytes.end());
    return description;
}

} // namespace FruImage
