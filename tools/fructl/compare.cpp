#include "tools/fructl/compare.h"

#include "tools/fructl/standardnames.h"
#include "tools/fructl/value.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

const ENTRY* Find(const std::vector<ENTRY>& entries, const std::string& name) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const ENTRY& one) { return one.name == name; });
    return found == entries.end() ? nullptr : &*found;
}

bool IsSame(const ENTRY& left, const ENTRY& right) {
    return left.raw == right.raw && (left.raw.empty() || left.type == right.type);
}

} // namespace

std::vector<ENTRY> Entries(const FRU& fru) {
    std::vector<ENTRY> entries;
    for (const AREA& area : fru.areas) {
        const std::string name(AreaName(area.id));
        if (!area.IsInfo())
            entries.push_back({name + ".data", Hex(area.bytes, " "), "binary", area.bytes});
        if (area.IsInfo() && area.id != FRU_AREA_CHASSIS)
            entries.push_back(
                {name + ".language", std::string(LanguageName(area.language)), "language", {area.language}});
        for (std::size_t position = 0; position < area.fields.size(); ++position) {
            const FIELD& field = area.fields[position];
            entries.push_back({FieldName(area.Row(), position), DecodeValue(field), TypeName(field), field.data});
        }
    }
    return entries;
}

std::optional<ENTRY> FindEntry(const FRU& fru, const FIELD_NAME& name) {
    if (name.area == FRU_AREA_COMMON_HEADER)
        return ENTRY{name.text, Hex(fru.header, " "), "binary", fru.header};
    const std::vector<ENTRY> entries = Entries(fru);
    const ENTRY* found = Find(entries, name.text);
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
    return differences;
}

FRU Edited(FRU fru, const EDITS& edits) {
    for (AREA& area : fru.areas) {
        for (const ASSIGNMENT& one : edits.fields) {
            const std::size_t first = one.name.part == FIELD_NAME::CUSTOM ? area.Row().fields.size() : 0;
            if (one.name.area == area.id) {
                FIELD& field = area.fields[first + one.name.index];
                field.typeLength = static_cast<UINT8>(FIELD_8_BIT | one.data.size());
                field.data = one.data;
            }
        }
        if (area.id == FRU_AREA_INTERNAL_USE && edits.internalUse)
            area.bytes = *edits.internalUse;
        if (area.id == FRU_AREA_MULTIRECORD && edits.multiRecord)
            area.bytes = *edits.multiRecord;
    }
    return fru;
}

} // namespace Fructl
