#include "tools/fructl/imagesession.h"

#include "tools/fructl/image.h"
#include "tools/fructl/loaded.h"
#include "tools/fructl/session.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>

namespace Fructl {

namespace {

using nlohmann::json;

/// What the library sees: for each info area its number of fields, its room, and its fixed fields' bytes.
json LibraryView(const CLibrary& library, const FRU& fru) {
    _EFI_FRU_INTERFACE* table = library.Table();
    json view = json::object();
    for (const AREA& area : fru.areas) {
        if (!area.IsInfo())
            continue;
        json& seen = view[std::string(AreaName(area.id))];
        unsigned number = 0;
        unsigned room = 0;
        library.Check(table->SelectAreaEnum(table, area.id), EXIT_DEVICE, area.Row().name);
        library.Check(table->GetNumberOfFields(table, number), EXIT_DEVICE, area.Row().name);
        library.Check(table->GetMaxFieldSize(table, room), EXIT_DEVICE, area.Row().name);
        seen = {{"fields", number}, {"room", room}, {"data", json::array()}};
        // The first custom field is the last one whose bytes the table tells.
        for (unsigned index = 0; index < std::min<std::size_t>(number, area.Row().fields.size() + 1); ++index) {
            const UINT8* data = nullptr;
            unsigned length = 0;
            library.Check(table->SelectFieldInteger(table, index), EXIT_DEVICE, area.Row().name);
            library.Check(table->GetFieldDataValue(table, data, length), EXIT_DEVICE, area.Row().name);
            seen["data"].push_back(BYTES(data, data + length));
        }
    }
    return view;
}

void CompareView(const json& view, CONTENTS& contents) {
    for (const AREA& area : contents.fru.areas) {
        if (!area.IsInfo())
            continue;
        const json& seen = view.at(std::string(AreaName(area.id)));
        bool same = seen.at("fields") == area.fields.size() && seen.at("room") == area.Room();
        for (std::size_t index = 0; same && index < seen.at("data").size(); ++index)
            same = seen.at("data")[index].get<BYTES>() == area.fields[index].data;
        if (!same)
            throw CToolError(EXIT_DEVICE, contents.source.label,
                             fmt::format("two readings of the {} area differ", AreaName(area.id)),
                             "did something else write to it meanwhile?");
    }
}

} // namespace

void LoadWithLibrary(CONTENTS& contents) {
    try {
        const json view = RunSession(contents.source.label, [&](const PROGRESS&) {
            // A device has just been read: the library, which takes 8 bytes at a time, gets what came.
            const bool isText = contents.source.kind == SOURCE::TEXT;
            return LibraryView(isText ? *LoadedLibrary(contents) : *ImageLibrary(contents), contents.fru);
        });
        CompareView(view, contents);
    } catch (const CToolError& error) {
        if (error.m_status != EXIT_DAMAGED)
            throw;
        contents.fru.Report(FRU_AREA_COMMON_HEADER, "refused", error.m_why);
    }
}

BYTES EditImage(const BYTES& image, const FRU& fru, const EDITS& edits, const std::string& name) {
    BYTES packed = PackImage(fru);
    // The chain of records may grow into the room behind it.
    packed.resize(packed.size() + (edits.multiRecord ? edits.multiRecord->size() : 0));
    const json edited = RunSession(name, [&](const PROGRESS&) {
        const CLibrary library(packed);
        library.Check(library.Load(ADDRESS()), EXIT_DAMAGED, name);
        library.SelectDevice();
        ApplyEdits(library, fru, edits);
        library.Check(library->CommitConfigurationToSystem(library.Table()), EXIT_REFUSED, name);
        return json::binary(library.Image());
    });
    return UnpackImage(image, fru, edited.get_binary(), name);
}

void SaveText(const CONTENTS& contents, const EDITS& edits, const std::string& directory, const std::string& path) {
    const std::string& name = contents.source.label;
    RunSession(name, [&](const PROGRESS&) {
        const auto library = LoadedLibrary(contents);
        ApplyEdits(*library, contents.fru, edits);
        std::filesystem::current_path(directory);
        std::wstring wide(path.size() + 1, L'\0');
        const std::size_t length = std::mbstowcs(wide.data(), path.c_str(), wide.size());
        if (length == static_cast<std::size_t>(-1))
            throw CToolError(EXIT_REFUSED, path, "the name is not UTF-8");
        library->Check((*library)->SaveConfigurationToFile(library->Table(), wide.c_str(), nullptr), EXIT_REFUSED,
                       path);
        return json();
    });
}

} // namespace Fructl
