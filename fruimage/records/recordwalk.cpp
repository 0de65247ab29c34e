// The walks over a form's rows: one that reads, one that writes.
#include "fruimage/records/fieldvalue.h"
#include "fruimage/records/recordlines.h"

namespace FruRecords {

namespace {

bool DoesMatch(const FORM_MATCH& match, BYTE_VIEW data) {
    return data.size() >= match.place.End() && ReadNumber(match.place, data) == match.number;
}

const RECORD_FORM& FindForm(std::uint8_t type, BYTE_VIEW data) {
    for (const auto forms : {StandardForms(), ManufacturerForms()})
        for (const RECORD_FORM& form : forms)
            if (type >= form.firstType && type <= form.lastType &&
                std::ranges::all_of(form.matches, [&](const FORM_MATCH& match) { return DoesMatch(match, data); }))
                return form;
    return UnknownForm();
}

template <typename ACTION> void ForEachRow(const RECORD_FORM& form, ACTION action) {
    for (const FIELD_ROWS part : form.parts)
        for (const FIELD_ROW& row : part)
            action(row);
}

bool IsThere(const FIELD_ROW& row, BYTE_VIEW data) {
    return data.size() >= row.place.End();
}

/// How much of a record its form describes, and how much of `data` its fields cover.
struct EXTENT {
    std::size_t described = 0;
    std::size_t covered = 0;
    bool isOpen = false;     ///< the form ends in a rest
    bool isRestHere = false; ///< and the record is long enough for it
};

EXTENT MeasureForm(const RECORD_FORM& form, BYTE_VIEW data) {
    EXTENT extent;
    ForEachRow(form, [&](const FIELD_ROW& row) {
        extent.described = std::max(extent.described, row.place.End());
        extent.isOpen |= row.place.IsRest();
        if (!IsThere(row, data))
            return;
        extent.isRestHere |= row.place.IsRest();
        extent.covered = row.place.IsRest() ? data.size() : std::max(extent.covered, row.place.End());
    });
    return extent;
}

/// The bytes behind the last field that is wholly there.
FIELD_ROW OtherData(const EXTENT& extent) {
    return {"other-data", "Other data", Rest(static_cast<std::uint16_t>(extent.covered)), FIELD_KIND::BINARY};
}

std::vector<std::string> Notes(const EXTENT& extent, std::size_t size) {
    const bool isShorter = size < extent.described;
    if (!isShorter && (size == extent.described || extent.isOpen))
        return {};
    return {std::string("the record is ") + (isShorter ? "shorter" : "longer") + " than its type says: length " +
            std::to_string(size) + " instead of " + std::to_string(extent.described)};
}

/// Appends the initial values of the fields for which `data` is too short.
void AppendMissingFields(const RECORD_FORM& form, BYTE_VECTOR& data) {
    const std::size_t size = data.size();
    data.resize(std::max(size, MeasureForm(form, data).described));
    ForEachRow(form, [&](const FIELD_ROW& row) {
        if (row.place.offset >= size && row.initial != 0)
            WriteNumber(row.place, row.initial, data);
    });
}

/// Appended fields may give the record another form, which then has fields to append.
void CompleteRecord(std::uint8_t type, BYTE_VECTOR& data) {
    std::size_t size = 0;
    do {
        size = data.size();
        AppendMissingFields(FindForm(type, data), data);
    } while (data.size() > size);
}

std::optional<FIELD_ROW> FindRow(const RECORD_FORM& form, BYTE_VIEW data, std::string_view key) {
    std::optional<FIELD_ROW> found;
    ForEachRow(form, [&](const FIELD_ROW& row) {
        if (row.key == key)
            found = row;
    });
    const EXTENT extent = MeasureForm(form, data);
    const FIELD_ROW other = OtherData(extent);
    return !found && !extent.isRestHere && other.key == key ? other : found;
}

RECORD_RESULT Refuse(std::string_view key, const std::string& reason) {
    return {std::nullopt, std::string(key) + ": " + reason};
}

RECORD_DESCRIPTION DescribeForm(const RECORD_FORM& form) {
    RECORD_DESCRIPTION description{form.title, form.firstType, form.lastType, {}};
    ForEachRow(form, [&](const FIELD_ROW& row) {
        description.fields.push_back({row.key, row.title, row.unit.name, AcceptedValues(row)});
    });
    return description;
}

} // namespace

DECODED_RECORD DecodeRecord(std::uint8_t type, BYTE_VIEW data) {
    const RECORD_FORM& form = FindForm(type, data);
    const EXTENT extent = MeasureForm(form, data);
    DECODED_RECORD record;
    record.title = form.title;
    record.notes = Notes(extent, data.size());
    ForEachRow(form, [&](const FIELD_ROW& row) {
        if (IsThere(row, data))
            record.fields.push_back(ReadField(row, data));
    });
    if (extent.covered < data.size())
        record.fields.push_back(ReadField(OtherData(extent), data));
    record.lines = MakeLines(form.lines, record.fields);
    return record;
}

RECORD_RESULT EncodeField(std::uint8_t type, BYTE_VIEW data, std::string_view key, std::string_view text) {
    const RECORD_FORM& form = FindForm(type, data);
    const auto row = FindRow(form, data, key);
    if (!row)
        return Refuse(key, std::string("no field of this record (") + form.title + ")");
    if (!IsThere(*row, data))
        return Refuse(key, "the record ends before this field: it has " + std::to_string(data.size()) +
                               " bytes of data and would need " + std::to_string(row->place.End()));
    BYTE_VECTOR changed(data.begin(), data.end());
    if (!WriteField(*row, text, changed))
        return Refuse(key, "'" + std::string(text) + "' is none of its values: " + AcceptedValues(*row));
    if (&FindForm(type, changed) != &form)
        CompleteRecord(type, changed);
    if (changed.size() > RECORD_DATA_LIMIT)
        return Refuse(key, "the record would have " + std::to_string(changed.size()) + " bytes of data, the limit is " +
                               std::to_string(RECORD_DATA_LIMIT));
    return {std::move(changed), {}};
}

BYTE_VECTOR NewRecord(std::uint8_t type) {
    BYTE_VECTOR data;
    CompleteRecord(type, data);
    return data;
}

RECORD_DESCRIPTION DescribeRecord(std::uint8_t type, BYTE_VIEW data) {
    return DescribeForm(FindForm(type, data));
}

std::vector<RECORD_DESCRIPTION> DescribeAllRecords() {
    std::vector<RECORD_DESCRIPTION> descriptions;
    for (const auto forms : {StandardForms(), ManufacturerForms()})
        for (const RECORD_FORM& form : forms)
            descriptions.push_back(DescribeForm(form));
    return descriptions;
}

} // namespace FruRecords
