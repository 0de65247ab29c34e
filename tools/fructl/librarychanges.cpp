#include "tools/fructl/librarychanges.h"

#include <algorithm>

namespace Fructl {

namespace {

BYTES BytesOf(const FRU& fru, const AREA& area) {
    const BYTE_VIEW bytes = fru.View(area.Range());
    return {bytes.begin(), bytes.end()};
}

bool IsSame(const FIELD& before, const FIELD& after) {
    return before.bytes == after.bytes && before.typeLength == after.typeLength;
}

/// The changed fields of an info area without other changes.
bool AddFields(const AREA& before, const AREA& after, LIBRARY_CHANGES& changes) {
    if (before.fields.size() != after.fields.size() || before.fields.size() < before.Row().fields.size() ||
        before.language != after.language || before.length != after.length)
        return false;
    for (std::size_t position = 0; position < after.fields.size(); ++position) {
        const FIELD& field = after.fields[position];
        if (IsSame(before.fields[position], field))
            continue;
        const bool isText = field.kind != FIELD_KIND::TEXT || field.encoding == FruImage::ENCODING::TEXT;
        if (!isText)
            return false;
        changes.fields.push_back(
            {FruImage::FieldAt(after.id, position), after.fields.size(), before.fields[position].bytes, field.bytes});
    }
    return true;
}

bool AddArea(const FRU& before, const FRU& after, const AREA& area, LIBRARY_CHANGES& changes) {
    const AREA* old = before.Find(area.id);
    if (!old || old->offset != area.offset || old->damaged)
        return false;
    BYTES bytes = BytesOf(after, area);
    if (bytes == BytesOf(before, *old))
        return true;
    if (area.IsInfo())
        return AddFields(*old, area, changes);
    if (area.id == AREA_ID::INTERNAL_USE && old->length != area.length)
        return false;
    (area.id == AREA_ID::INTERNAL_USE ? changes.internalUse : changes.multiRecord) = std::move(bytes);
    return true;
}

} // namespace

bool LIBRARY_CHANGES::Touches(AREA_ID area) const {
    return (area == AREA_ID::INTERNAL_USE && internalUse) || (area == AREA_ID::MULTIRECORD && multiRecord) ||
           std::any_of(fields.begin(), fields.end(), [&](const FIELD_CHANGE& one) { return one.name.area == area; });
}

std::optional<LIBRARY_CHANGES> LibraryChanges(const FRU& before, const FRU& after) {
    LIBRARY_CHANGES changes;
    if (!before.IsSound() || before.areas.size() != after.areas.size())
        return std::nullopt;
    for (const AREA& area : after.areas)
        if (!AddArea(before, after, area, changes))
            return std::nullopt;
    return changes;
}

FRU_AREA LibraryArea(AREA_ID area) {
    switch (area) {
    case AREA_ID::INTERNAL_USE:
        return FRU_AREA_INTERNAL_USE;
    case AREA_ID::CHASSIS:
        return FRU_AREA_CHASSIS;
    case AREA_ID::BOARD:
        return FRU_AREA_BOARD;
    case AREA_ID::PRODUCT:
        return FRU_AREA_PRODUCT;
    case AREA_ID::MULTIRECORD:
        return FRU_AREA_MULTIRECORD;
    default:
        return FRU_AREA_COMMON_HEADER;
    }
}

} // namespace Fructl
