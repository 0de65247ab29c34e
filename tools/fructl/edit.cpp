#include "tools/fructl/edit.h"

#include "tools/fructl/settings.h"
#include "tools/fructl/standardnames.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/value.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

[[noreturn]] void RefuseMissing(const FIELD_NAME& name, const FRU& fru) {
    const AREA* area = fru.Find(name.area);
    if (!area)
        throw CToolError(EXIT_REFUSED, name.text, fmt::format("this FRU has no {} area", AreaName(name.area)));
    throw CToolError(EXIT_REFUSED, name.text,
                     fmt::format("the {} area has {} custom field{}", AreaName(name.area), area->CustomFields(),
                                 area->CustomFields() == 1 ? "" : "s"),
                     "custom fields can be changed, but not added");
}

const FIELD& FieldToSet(const FIELD_NAME& name, const FRU& fru) {
    if (name.part == FIELD_NAME::LANGUAGE || name.part == FIELD_NAME::DATA)
        throw CToolError(EXIT_REFUSED, name.text, "it can be read, but not set",
                         name.part == FIELD_NAME::DATA ? "'fructl load' replaces the bytes of an area" : "");
    const FIELD* field = fru.Find(name);
    if (!field)
        RefuseMissing(name, fru);
    return *field;
}

void Add(EDITS& edits, const FIELD_NAME& name, const FIELD& before, BYTES data) {
    const bool same =
        before.data == data && (before.kind != FIELD_KIND::TEXT || data.empty() || before.Type() == FIELD_8_BIT);
    if (!same)
        edits.fields.push_back({name, before, std::move(data)});
}

/// A field's bytes as 8-bit text.
BYTES AsText(const FIELD& field) {
    if (field.kind != FIELD_KIND::TEXT || field.Type() == FIELD_8_BIT || field.data.empty())
        return field.data;
    const std::string text = DecodeValue(field);
    return BYTES(text.begin(), text.end());
}

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

} // namespace

bool EDITS::Touches(FRU_AREA area) const {
    return (area == FRU_AREA_INTERNAL_USE && internalUse) || (area == FRU_AREA_MULTIRECORD && multiRecord) ||
           std::any_of(fields.begin(), fields.end(), [&](const ASSIGNMENT& one) { return one.name.area == area; });
}

EDITS ParseAssignments(const std::vector<std::string>& texts, const FRU& fru) {
    EDITS edits;
    std::vector<FIELD_NAME> seen;
    for (const std::string& text : texts) {
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos)
            throw CToolError(EXIT_USAGE, text, "is no AREA.FIELD=VALUE", "for example: board.serial-number=AB123");
        const FIELD_NAME name = ParseFieldName(text.substr(0, equals));
        if (std::find(seen.begin(), seen.end(), name) != seen.end())
            throw CToolError(EXIT_USAGE, name.text, "is set twice");
        seen.push_back(name);
        const FIELD& before = FieldToSet(name, fru);
        Add(edits, name, before, EncodeValue(before.kind, text.substr(equals + 1), name.text, Settings().force));
    }
    CheckRoom(edits, fru);
    return edits;
}

EDITS CopyFields(const FRU& values, const FRU& target) {
    EDITS edits;
    for (const AREA& area : values.areas) {
        for (std::size_t position = 0; area.IsInfo() && position < area.fields.size(); ++position) {
            const FIELD& field = area.fields[position];
            const FIELD_NAME name = ParseFieldName(FieldName(area.Row(), position));
            const FIELD* before = target.Find(name);
            if (!before && (Settings().force || field.data.empty()))
                continue;
            if (!before)
                RefuseMissing(name, target);
            if (*before == field)
                continue;
            if (field.kind == FIELD_KIND::TEXT && field.Type() == FIELD_BINARY && !field.data.empty())
                throw CToolError(EXIT_REFUSED, name.text, "it is binary, and only text can be set");
            BYTES data = AsText(field);
            if (field.kind == FIELD_KIND::TEXT)
                CheckText(data, name.text, Settings().force);
            else if (field.kind == FIELD_KIND::CHASSIS_TYPE)
                data = EncodeValue(field.kind, std::to_string(data[0]), name.text, false);
            Add(edits, name, *before, std::move(data));
        }
    }
    CheckRoom(edits, target);
    return edits;
}

void CheckRoom(const EDITS& edits, const FRU& fru) {
    for (const AREA& area : fru.areas) {
        std::ptrdiff_t growth = 0;
        const ASSIGNMENT* only = nullptr;
        std::size_t count = 0;
        for (const ASSIGNMENT& one : edits.fields)
            if (one.name.area == area.id) {
                growth += one.Growth();
                only = &one;
                ++count;
            }
        if (growth <= static_cast<std::ptrdiff_t>(area.Room()))
            continue;
        if (count == 1)
            throw CToolError(EXIT_REFUSED, only->name.text,
                             fmt::format("the value has {} bytes, there is room for {}", only->data.size(),
                                         only->before.data.size() + area.Room()),
                             "shorten it, or shorten another field of the area in the same call");
        throw CToolError(EXIT_REFUSED, area.Row().name,
                         fmt::format("the values need {} more bytes, the area has room for {}", growth, area.Room()));
    }
}

EDITS TextForDroppedFields(const FRU& fru) {
    EDITS edits;
    for (const AREA& area : fru.areas)
        for (std::size_t position = 0; position < area.fields.size(); ++position) {
            const FIELD& field = area.fields[position];
            if (field.kind == FIELD_KIND::TEXT && !field.data.empty() &&
                (field.Type() == FIELD_BINARY || field.Type() == FIELD_6_BIT))
                Add(edits, ParseFieldName(FieldName(area.Row(), position)), field, AsText(field));
        }
    CheckRoom(edits, fru);
    return edits;
}

std::string DescribeEdits(const EDITS& edits) {
    std::size_t width = 0;
    for (const ASSIGNMENT& one : edits.fields)
        width = std::max(width, one.name.text.size());
    std::string text;
    for (const ASSIGNMENT& one : edits.fields) {
        const FIELD after{one.before.kind, static_cast<UINT8>(FIELD_8_BIT | one.data.size()), one.data};
        text += fmt::format("  {:<{}}  {} -> {}\n", one.name.text, width, Quoted(DecodeValue(one.before)),
                            Quoted(DecodeValue(after)));
    }
    if (edits.internalUse)
        text += fmt::format("  internal  {} bytes replaced\n", edits.internalUse->size());
    if (edits.multiRecord)
        text += fmt::format("  multirecord  replaced by {} bytes\n", edits.multiRecord->size());
    return text;
}

} // namespace Fructl
