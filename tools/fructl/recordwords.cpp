#include "tools/fructl/recordwords.h"

#include "tools/fructl/toolerror.h"
#include "tools/fructl/words/words.h"

#include <fmt/format.h>

#include <map>
#include <utility>

namespace Fructl {

namespace {

constexpr std::string_view PREFIX = "multirecord.";
constexpr std::string_view TYPE_KEY = "type";
constexpr unsigned MAXIMUM_RECORDS = 13107;

using FruImage::RECORD_VALUE;

[[noreturn]] void RefuseField(const RECORD_NAME& name, const std::string& why) {
    throw CToolError(EXIT_REFUSED, RecordNameText(name.index, name.key), why,
                     "'fructl fields' lists the fields of records");
}

/// The new records, by their index.
using RECORD_VALUES = std::map<std::size_t, RECORD_VALUE>;

RECORD_VALUE& ValueOf(const RECORD_NAME& name, const AREA* area, RECORD_VALUES& values) {
    const std::size_t count = area ? area->records.size() : 0;
    const auto known = values.find(name.index);
    if (known != values.end())
        return known->second;
    if (name.index >= count)
        RefuseField(name, fmt::format("there is no record {}", name.index + 1));
    const RECORD& record = area->records[name.index];
    return values[name.index] = {record.Type(), record.Format(), record.data};
}

/// The data of a new record, or of one that changes its type.
void SetType(const RECORD_CHANGE& change, const AREA* area, RECORD_VALUES& values) {
    const auto type = ParseNumber(change.value, 0xFF);
    if (!type)
        RefuseField(change.name, fmt::format("'{}' is no number from 0 to 255", change.value));
    const std::size_t count = area ? area->records.size() : 0;
    const bool follows = change.name.index == count || values.contains(change.name.index - 1);
    if (change.name.index > count && !follows)
        RefuseField(change.name, fmt::format("there are {} records: a new one is record {}", count, count + 1));
    const auto number = static_cast<UINT8>(*type);
    values[change.name.index] = {number, 2, FruRecords::NewRecord(number)};
}

void SetField(const RECORD_CHANGE& change, RECORD_VALUE& record) {
    auto result = FruRecords::EncodeField(record.type, record.data, change.name.key, change.value);
    if (!result.data)
        if (auto named = FruRecords::EncodeField(record.type, record.data, change.name.key, InEnglish(change.value));
            named.data)
            result = std::move(named);
    if (!result.data)
        RefuseField(change.name, result.error);
    record.data = std::move(*result.data);
}

} // namespace

std::optional<RECORD_NAME> ParseRecordName(std::string_view text) {
    if (!text.starts_with(PREFIX))
        return std::nullopt;
    text.remove_prefix(PREFIX.size());
    const std::size_t dot = text.find('.');
    const auto number = ParseNumber(text.substr(0, dot), MAXIMUM_RECORDS);
    if (dot == std::string_view::npos || !number || *number == 0)
        return std::nullopt;
    return RECORD_NAME{*number - 1, std::string(text.substr(dot + 1))};
}

std::string RecordNameText(std::size_t index, std::string_view key) {
    return fmt::format("{}{}.{}", PREFIX, index + 1, key);
}

FruRecords::DECODED_RECORD Decoded(const RECORD& record) {
    FruRecords::DECODED_RECORD decoded = FruRecords::DecodeRecord(record.Type(), record.data);
    decoded.title = Word(decoded.title);
    for (FruRecords::RECORD_FIELD& field : decoded.fields) {
        field.title = Word(field.title);
        if (!field.isContent)
            field.display = Spoken(field.display);
    }
    for (FruRecords::RECORD_LINE& line : decoded.lines) {
        line.title = Word(line.title);
        if (!line.isContent)
            line.text = Spoken(line.text);
    }
    for (std::string& note : decoded.notes)
        note = Spoken(note);
    return decoded;
}

std::vector<ENTRY> RecordEntries(const AREA& area) {
    std::vector<ENTRY> entries;
    for (std::size_t index = 0; index < area.records.size(); ++index) {
        const RECORD& record = area.records[index];
        const std::string type = fmt::format("0x{:02X}", record.Type());
        entries.push_back({RecordNameText(index, TYPE_KEY), type, "record-type", {record.Type()}, area.id, type});
        for (const FruRecords::RECORD_FIELD& field : FruRecords::DecodeRecord(record.Type(), record.data).fields) {
            const BYTE_VIEW bytes = Slice(record.data, field.offset, field.size);
            entries.push_back({RecordNameText(index, field.key), field.display, "record",
                               BYTES(bytes.begin(), bytes.end()), area.id, field.bare, !field.isContent});
        }
    }
    return entries;
}

std::vector<FruImage::EDIT> RecordEdits(const std::vector<RECORD_CHANGE>& changes, const FRU& fru) {
    const AREA* area = fru.Find(AREA_ID::MULTIRECORD);
    RECORD_VALUES values;
    for (const RECORD_CHANGE& change : changes) {
        if (change.name.key == TYPE_KEY)
            SetType(change, area, values);
        else
            SetField(change, ValueOf(change.name, area, values));
    }
    std::vector<FruImage::EDIT> edits;
    for (auto& [index, value] : values) {
        if (area && index < area->records.size())
            edits.push_back(FruImage::REPLACE_RECORD{index, std::move(value)});
        else
            edits.push_back(FruImage::APPEND_RECORD{std::move(value)});
    }
    return edits;
}

} // namespace Fructl
