#include "tools/fructl/compare.h"

#include "tools/fructl/recordwords.h"
#include "tools/fructl/words/words.h"

#include <algorithm>

namespace Fructl {

namespace {

const ENTRY* Find(const std::vector<ENTRY>& entries, const std::string& name) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const ENTRY& one) { return one.name == name; });
    return found == entries.end() ? nullptr : &*found;
}

bool IsSame(const ENTRY& left, const ENTRY& right) {
    // Fields of a record can share bytes.
    if (left.type == "record")
        return left.value == right.value;
    return left.raw == right.raw && (left.raw.empty() || left.type == right.type);
}

void AddInfoArea(const AREA& area, std::vector<ENTRY>& entries) {
    const std::string name(AreaName(area.id));
    if (area.Row().hasLanguage) {
        const std::string language(FruImage::LanguageName(area.language));
        entries.push_back({name + ".language", language, "language", {area.language}, area.id, language, true});
    }
    for (std::size_t position = 0; position < area.fields.size(); ++position) {
        const FIELD& field = area.fields[position];
        entries.push_back({FieldNameText(FruImage::FieldAt(area.id, position)), field.text, TypeName(field),
                           field.bytes, area.id, BareValue(field), field.kind != FIELD_KIND::TEXT});
    }
}

ENTRY BytesEntry(AREA_ID area, BYTE_VIEW bytes) {
    const std::string text = Hex(bytes, " ");
    return {std::string(AreaName(area)) + ".data", text, "binary", BYTES(bytes.begin(), bytes.end()), area, text};
}

/// Different fields of records make a difference of the multi-record area's bytes redundant.
std::vector<DIFFERENCE> WithoutExplained(std::vector<DIFFERENCE> differences) {
    const auto isRecord = [](const DIFFERENCE& one) { return ParseRecordName(one.Name()).has_value(); };
    if (std::any_of(differences.begin(), differences.end(), isRecord))
        std::erase_if(differences, [](const DIFFERENCE& one) { return one.Name() == "multirecord.data"; });
    return differences;
}

} // namespace

std::string ENTRY::Shown() const {
    return isWord ? Spoken(value) : value;
}

std::string ENTRY::ShownBare() const {
    return isWord ? Spoken(bare) : bare;
}

std::vector<ENTRY> Entries(const FRU& fru) {
    std::vector<ENTRY> entries;
    for (const AREA& area : fru.areas) {
        if (area.IsInfo())
            AddInfoArea(area, entries);
        else
            entries.push_back(BytesEntry(area.id, fru.View(area.Range())));
        const std::vector<ENTRY> records = RecordEntries(area);
        entries.insert(entries.end(), records.begin(), records.end());
    }
    return entries;
}

std::optional<ENTRY> FindEntry(const FRU& fru, const std::string& name) {
    if (name == "header.data")
        return BytesEntry(AREA_ID::HEADER, fru.header);
    const std::vector<ENTRY> entries = Entries(fru);
    const ENTRY* found = Find(entries, name);
    return found ? std::optional<ENTRY>(*found) : std::nullopt;
}

std::vector<DIFFERENCE> Compare(const FRU& left, const FRU& right) {
    const std::vector<ENTRY> leftEntries = Entries(left);
    const std::vector<ENTRY> rightEntries = Entries(right);
    std::vector<DIFFERENCE> differences;
    for (const ENTRY& entry : leftEntries) {
        const ENTRY* other = Find(rightEntries, entry.name);
        if (!other)
            differences.push_back({entry, std::nullopt});
        else if (!IsSame(entry, *other))
            differences.push_back({entry, *other});
    }
    for (const ENTRY& entry : rightEntries)
        if (!Find(leftEntries, entry.name))
            differences.push_back({std::nullopt, entry});
    return WithoutExplained(std::move(differences));
}

} // namespace Fructl
