#include "fruimage/draft.h"
#include "fruimage/parse.h"
#include "fruimage/text.h"

namespace FruImage {

namespace {

FAULT BadRecord(std::string text) {
    return Refuse(REFUSAL::BAD_VALUE, AREA_ID::MULTIRECORD, std::move(text));
}

FAULT CheckRecord(const RECORD_VALUE& record) {
    if (record.data.empty() || record.data.size() > MAXIMUM_RECORD_DATA)
        return BadRecord(Text("a record has 1 to ", MAXIMUM_RECORD_DATA, " bytes of data, not ", record.data.size()));
    return record.format > 0x0F ? BadRecord("the format of a record has 4 bits") : std::nullopt;
}

RECORD_DESCRIPTION Describe(const RECORD_VALUE& record) {
    RECORD_DESCRIPTION description{record.type, {}, record.data, {}};
    if (record.format != RECORD_FORMAT)
        description.flags = record.format;
    return description;
}

std::string RecordText(const RECORD_DESCRIPTION& record) {
    return Text("type ", ByteText(record.type), ", ", Count(record.data.size(), "byte"));
}

bool IsClosing(const RECORD_DESCRIPTION& record) {
    return record.data.empty();
}

/// The chain without an empty closing record.
std::size_t Records(const AREA_DESCRIPTION& area) {
    return area.records.size() - (!area.records.empty() && IsClosing(area.records.back()) ? 1U : 0U);
}

/// After a change: marks the last record, and no other, as the end of the list.
void MarkLast(DRAFT_AREA& area) {
    auto& records = area.description.records;
    area.description.bytes.clear();
    area.changed = true;
    area.removed = Records(area.description) == 0;
    for (RECORD_DESCRIPTION& record : records) {
        const bool last = &record == &records.back();
        if (record.flags && !(last && IsClosing(record)))
            record.flags = static_cast<BYTE>((*record.flags & 0x7F) | (last ? END_OF_LIST : 0));
    }
}

std::string RecordName(std::size_t index) {
    return Text("multirecord.record", index + 1);
}

/// The chain if it has record `index`.
Result<DRAFT_AREA*> ChainWith(DRAFT& draft, std::size_t index) {
    const DRAFT_AREA* present = draft.Find(AREA_ID::MULTIRECORD);
    if (!present || index >= Records(present->description))
        return Refuse(
            REFUSAL::NO_SUCH_FIELD, AREA_ID::MULTIRECORD,
            Text("there is no record ", index + 1, ", there are ", present ? Records(present->description) : 0));
    return draft.FindOrMake(AREA_ID::MULTIRECORD);
}

/// Replaces the whole chain.
FAULT SetRecords(DRAFT& draft, std::vector<RECORD_DESCRIPTION> records) {
    if (records.empty() && !draft.Find(AREA_ID::MULTIRECORD))
        return std::nullopt;
    const Result<DRAFT_AREA*> found = draft.FindOrMake(AREA_ID::MULTIRECORD);
    if (!found)
        return found.Error();
    DRAFT_AREA& area = **found;
    const BYTES before = ComposeArea(area.description).Take();
    const std::string text = area.before ? Count(Records(area.description), "record") : std::string();
    area.description.bytes.clear();
    area.description.records = std::move(records);
    area.removed = area.description.records.empty();
    if (!area.removed && area.before && ComposeArea(area.description).Value() == before)
        return std::nullopt;
    area.changed = true;
    draft.Say(area, "multirecord", text, area.removed ? std::string() : Count(Records(area.description), "record"));
    return std::nullopt;
}

} // namespace

FAULT Edit(DRAFT& draft, const REMOVE_AREA& edit) {
    DRAFT_AREA* area = draft.Find(edit.area);
    if (!area)
        return Refuse(REFUSAL::NO_SUCH_FIELD, edit.area, Text("there is no ", AreaName(edit.area), " area"));
    area->removed = true;
    draft.changes.push_back(
        {edit.area, std::string(AreaName(edit.area)), {}, {}, Text(AreaName(edit.area), ": removed")});
    return std::nullopt;
}

FAULT Edit(DRAFT& draft, const SET_INTERNAL& edit) {
    if (edit.bytes.empty())
        return Refuse(REFUSAL::BAD_VALUE, AREA_ID::INTERNAL_USE, "it has one byte at least, its format version");
    const Result<DRAFT_AREA*> found = draft.FindOrMake(AREA_ID::INTERNAL_USE);
    if (!found)
        return found.Error();
    DRAFT_AREA& area = **found;
    BYTES& bytes = area.description.bytes;
    if (bytes == edit.bytes)
        return std::nullopt;
    if (area.before && bytes.size() != edit.bytes.size() && !edit.resize)
        return Refuse(REFUSAL::FIXED_SIZE, AREA_ID::INTERNAL_USE,
                      Text("the internal use area has ", bytes.size(), " bytes, the new one ", edit.bytes.size()),
                      "its size changes only where that is asked for");
    const std::string before = bytes.empty() ? std::string() : Count(bytes.size(), "byte");
    const bool sameSize = bytes.size() == edit.bytes.size();
    bytes = edit.bytes;
    if (!sameSize)
        bytes.resize(RoundUp(bytes.size()));
    area.changed = true;
    draft.Say(area, "internal", before, Count(bytes.size(), "byte"));
    return std::nullopt;
}

FAULT Edit(DRAFT& draft, const APPEND_RECORD& edit) {
    if (FAULT fault = CheckRecord(edit.record))
        return fault;
    const Result<DRAFT_AREA*> found = draft.FindOrMake(AREA_ID::MULTIRECORD);
    if (!found)
        return found.Error();
    DRAFT_AREA& area = **found;
    const std::size_t index = Records(area.description);
    auto& records = area.description.records;
    const auto place = records.insert(records.begin() + static_cast<std::ptrdiff_t>(index), Describe(edit.record));
    const std::string after = RecordText(*place);
    MarkLast(area);
    draft.Say(area, RecordName(index), {}, after);
    return std::nullopt;
}

FAULT Edit(DRAFT& draft, const REPLACE_RECORD& edit) {
    if (FAULT fault = CheckRecord(edit.record))
        return fault;
    const Result<DRAFT_AREA*> found = ChainWith(draft, edit.index);
    if (!found)
        return found.Error();
    RECORD_DESCRIPTION& record = (*found)->description.records[edit.index];
    const bool sameFormat = (record.flags.value_or(RECORD_FORMAT) & 0x0F) == edit.record.format;
    if (sameFormat && record.type == edit.record.type && record.data == edit.record.data && !record.checksum)
        return std::nullopt;
    const std::string before = RecordText(record);
    record = Describe(edit.record);
    draft.Say(**found, RecordName(edit.index), before, RecordText(record));
    MarkLast(**found);
    return std::nullopt;
}

FAULT Edit(DRAFT& draft, const REMOVE_RECORD& edit) {
    const Result<DRAFT_AREA*> found = ChainWith(draft, edit.index);
    if (!found)
        return found.Error();
    auto& records = (*found)->description.records;
    const auto place = records.begin() + static_cast<std::ptrdiff_t>(edit.index);
    draft.changes.push_back({AREA_ID::MULTIRECORD,
                             RecordName(edit.index),
                             RecordText(*place),
                             {},
                             Text(RecordName(edit.index), " is removed")});
    records.erase(place);
    MarkLast(**found);
    return std::nullopt;
}

FAULT Edit(DRAFT& draft, const REPLACE_RECORDS& edit) {
    std::vector<RECORD_DESCRIPTION> records;
    for (const RECORD_VALUE& record : edit.records) {
        if (FAULT fault = CheckRecord(record))
            return fault;
        records.push_back(Describe(record));
        if (records.back().flags && &record == &edit.records.back())
            records.back().flags = static_cast<BYTE>(*records.back().flags | END_OF_LIST);
    }
    return SetRecords(draft, std::move(records));
}

FAULT Edit(DRAFT& draft, const SET_RECORD_BYTES& edit) {
    FINDINGS findings;
    FRU chain;
    chain.bytes = edit.bytes;
    const AREA area = ReadRecords(chain.bytes, 0, findings);
    const bool damaged = HasDamage(findings);
    if (damaged || !IsChain(area))
        return BadRecord(damaged ? "the bytes are no chain of records: " + findings.front().text
                                 : "the bytes are no chain of records that ends");
    if (area.length != edit.bytes.size())
        return BadRecord(Text("the chain ends after ", area.length, " of ", Count(edit.bytes.size(), "byte")));
    return SetRecords(draft, DescribeArea(chain, area).records);
}

} // namespace FruImage
