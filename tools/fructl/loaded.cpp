#include "tools/fructl/loaded.h"

#include "tools/fructl/toolerror.h"

#include <algorithm>

namespace Fructl {

namespace {

/// The table counts custom fields from the last one backwards.
unsigned TableIndex(const FIELD_CHANGE& one) {
    const bool isCustom = one.name.part == FIELD_NAME::CUSTOM;
    return static_cast<unsigned>(isCustom ? one.fields - 1 - one.name.index : one.name.index);
}

void SetField(const CLibrary& library, AREA_ID area, unsigned index, const BYTES& data, const std::string& name) {
    static constexpr UINT8 EMPTY[1] = {0};
    _EFI_FRU_INTERFACE* table = library.Table();
    library.Check(table->SelectAreaEnum(table, LibraryArea(area)), EXIT_REFUSED, name);
    library.Check(table->SelectFieldInteger(table, index), EXIT_REFUSED, name);
    library.Check(
        table->SetFieldDataValue(table, data.empty() ? EMPTY : data.data(), static_cast<unsigned>(data.size())),
        EXIT_REFUSED, name);
}

void SetArea(const CLibrary& library, AREA_ID area, const std::optional<BYTES>& data) {
    if (!data)
        return;
    _EFI_FRU_INTERFACE* table = library.Table();
    const std::string name(AreaName(area));
    library.Check(table->SelectAreaEnum(table, LibraryArea(area)), EXIT_REFUSED, name);
    library.Check(table->SetAreaData(table, data->data(), static_cast<unsigned>(data->size())), EXIT_REFUSED, name);
}

/// A change of a custom field alone does not mark the product area for writing; setting a fixed field to its
/// present value does.
void MarkProduct(const CLibrary& library, const FRU& fru, const LIBRARY_CHANGES& changes) {
    const auto isFixed = [](const FIELD_CHANGE& one) {
        return one.name.area == AREA_ID::PRODUCT && one.name.part == FIELD_NAME::FIXED;
    };
    if (!changes.Touches(AREA_ID::PRODUCT) || std::any_of(changes.fields.begin(), changes.fields.end(), isFixed))
        return;
    const AREA& area = *fru.Find(AREA_ID::PRODUCT);
    // Every set value becomes 8-bit text: only a field of that type, or an empty one, keeps its value.
    for (unsigned index = 0; index < area.Row().fields.size(); ++index)
        if (const FIELD& field = area.fields[index]; field.encoding == FruImage::ENCODING::TEXT || field.bytes.empty())
            return SetField(library, AREA_ID::PRODUCT, index, field.bytes, "product");
}

} // namespace

std::unique_ptr<CLibrary> ImageLibrary(const CONTENTS& contents) {
    auto library = std::make_unique<CLibrary>(contents.fru.bytes);
    library->Check(library->Load(ADDRESS()), EXIT_DAMAGED, contents.source.label);
    library->SelectDevice();
    return library;
}

void LoadDevice(const CLibrary& library, const SOURCE& source) {
    library.Check(library.Load(source.address), EXIT_DAMAGED, source.label);
    library.SelectDevice();
}

void ApplyChanges(const CLibrary& library, const FRU& fru, LIBRARY_CHANGES changes) {
    // Shrinking fields make room for growing ones.
    std::stable_sort(changes.fields.begin(), changes.fields.end(),
                     [](const FIELD_CHANGE& a, const FIELD_CHANGE& b) { return a.Growth() < b.Growth(); });
    for (const FIELD_CHANGE& one : changes.fields)
        SetField(library, one.name.area, TableIndex(one), one.after, FruImage::FieldNameText(one.name));
    MarkProduct(library, fru, changes);
    SetArea(library, AREA_ID::INTERNAL_USE, changes.internalUse);
    SetArea(library, AREA_ID::MULTIRECORD, changes.multiRecord);
}

} // namespace Fructl
