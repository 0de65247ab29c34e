#include "tools/fructl/loaded.h"

#include "tools/fructl/files.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <sys/mman.h>
#include <unistd.h>

namespace Fructl {

namespace {

/// The table counts custom fields from the last one backwards.
unsigned TableIndex(const AREA& area, const FIELD_NAME& name) {
    const std::size_t index = name.part == FIELD_NAME::CUSTOM ? area.fields.size() - 1 - name.index : name.index;
    return static_cast<unsigned>(index);
}

void SetField(const CLibrary& library, FRU_AREA area, unsigned index, const BYTES& data, const std::string& name) {
    static constexpr UINT8 EMPTY[1] = {0};
    _EFI_FRU_INTERFACE* table = library.Table();
    library.Check(table->SelectAreaEnum(table, area), EXIT_REFUSED, name);
    library.Check(table->SelectFieldInteger(table, index), EXIT_REFUSED, name);
    library.Check(
        table->SetFieldDataValue(table, data.empty() ? EMPTY : data.data(), static_cast<unsigned>(data.size())),
        EXIT_REFUSED, name);
}

void SetArea(const CLibrary& library, FRU_AREA area, const std::optional<BYTES>& data) {
    if (!data)
        return;
    _EFI_FRU_INTERFACE* table = library.Table();
    const std::string name(AreaName(area));
    library.Check(table->SelectAreaEnum(table, area), EXIT_REFUSED, name);
    library.Check(table->SetAreaData(table, data->data(), static_cast<unsigned>(data->size())), EXIT_REFUSED, name);
}

/// A change of a custom field alone does not mark the product area for writing: setting a fixed field to
/// the value it has does.
void MarkProduct(const CLibrary& library, const FRU& fru, const EDITS& edits) {
    const auto isProduct = [](const ASSIGNMENT& one) { return one.name.area == FRU_AREA_PRODUCT; };
    const auto isFixed = [&](const ASSIGNMENT& one) { return isProduct(one) && one.name.part == FIELD_NAME::FIXED; };
    if (std::none_of(edits.fields.begin(), edits.fields.end(), isProduct) ||
        std::any_of(edits.fields.begin(), edits.fields.end(), isFixed))
        return;
    const AREA& area = *fru.Find(FRU_AREA_PRODUCT);
    // Whatever is set becomes 8-bit text: only a field of that type, or an empty one, keeps its value.
    for (unsigned index = 0; index < area.Row().fields.size(); ++index)
        if (const FIELD& field = area.fields[index]; field.Type() == FIELD_8_BIT || field.data.empty())
            return SetField(library, FRU_AREA_PRODUCT, index, field.data, "product");
    throw CToolError(EXIT_REFUSED, "product",
                     "a custom field can be changed only together with a fixed field of the product area",
                     "every fixed field of this area is binary, BCD or 6-bit: set one in the same call");
}

/// The library reads a file by its name; what can be read only once is given to it as a file in memory.
void LoadText(const CLibrary& library, const std::string& name, const BYTES& bytes) {
    std::error_code ignored;
    if (name != STANDARD_STREAM && std::filesystem::is_regular_file(name, ignored))
        return library.LoadFile(name);
    const int file = memfd_create("fructl-text", 0);
    if (file < 0 || write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        throw CToolError(EXIT_REFUSED, name, std::strerror(errno));
    const std::string path = fmt::format("/proc/self/fd/{}", file);
    try {
        library.LoadFile(path);
    } catch (CToolError& error) {
        error.m_what = name;
        for (std::size_t at = 0; (at = error.m_why.find(path, at)) != std::string::npos; at += name.size())
            error.m_why.replace(at, path.size(), name);
        throw;
    }
}

} // namespace

std::unique_ptr<CLibrary> ImageLibrary(const CONTENTS& contents) {
    auto library = std::make_unique<CLibrary>(contents.bytes);
    library->Check(library->Load(ADDRESS()), EXIT_DAMAGED, contents.source.label);
    library->SelectDevice();
    return library;
}

std::unique_ptr<CLibrary> LoadedLibrary(const CONTENTS& contents) {
    const SOURCE& source = contents.source;
    if (source.kind == SOURCE::IMAGE || source.isEeprom)
        return ImageLibrary(contents);
    if (source.kind == SOURCE::TEXT) {
        auto library = std::make_unique<CLibrary>(CLibrary::NO_BMC);
        LoadText(*library, source.label, contents.bytes);
        return library;
    }
    auto library = std::make_unique<CLibrary>(CLibrary::SYSTEM_BMC);
    library->Check(library->Load(source.address), EXIT_DAMAGED, source.label);
    library->SelectDevice();
    return library;
}

void ApplyEdits(const CLibrary& library, const FRU& fru, EDITS edits) {
    // What shrinks makes room for what grows.
    std::stable_sort(edits.fields.begin(), edits.fields.end(),
                     [](const ASSIGNMENT& a, const ASSIGNMENT& b) { return a.Growth() < b.Growth(); });
    for (const ASSIGNMENT& one : edits.fields)
        SetField(library, one.name.area, TableIndex(*fru.Find(one.name.area), one.name), one.data, one.name.text);
    MarkProduct(library, fru, edits);
    SetArea(library, FRU_AREA_INTERNAL_USE, edits.internalUse);
    SetArea(library, FRU_AREA_MULTIRECORD, edits.multiRecord);
}

} // namespace Fructl
