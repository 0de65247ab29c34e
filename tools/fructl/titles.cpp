#include "tools/fructl/titles.h"

#include "tools/fructl/languages.h"
#include "tools/fructl/library.h"
#include "tools/fructl/session.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/terminal.h"

#include "sim/fruimagebuilder.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Fructl {

namespace {

using nlohmann::json;

json TitlesInChild() {
    using namespace Frudata_Sim;
    const CLibrary library(CFruImageBuilder()
                               .InternalUse(BYTES(7))
                               .Chassis({.chassisType = 1, .customFields = {"--"}})
                               .Board({.customFields = {"--"}})
                               .Product({.customFields = {"--"}})
                               .MultiRecord(0xC0, BYTES(3))
                               .Build());
    _EFI_FRU_INTERFACE* table = library.Table();
    library.Check(library.Load(ADDRESS()), EXIT_DEVICE, "titles");
    library.SelectDevice();
    json titles = json::object();
    for (const AREA_ROW& row : Areas()) {
        json& texts = titles[std::to_string(row.area)];
        const WCHAR* text = nullptr;
        library.Check(table->SelectAreaEnum(table, row.area), EXIT_DEVICE, "titles");
        library.Check(table->GetAreaName(table, text), EXIT_DEVICE, "titles");
        texts.push_back(Utf8(text));
        for (unsigned index = 0; row.headerLength != 0 && index <= row.fields.size(); ++index) {
            library.Check(table->SelectFieldInteger(table, index), EXIT_DEVICE, "titles");
            library.Check(table->GetFieldTitle(table, text), EXIT_DEVICE, "titles");
            texts.push_back(Utf8(text));
        }
    }
    return titles;
}

} // namespace

const TITLES& Titles() {
    static const TITLES titles = [] {
        const json texts = RunSession("titles", [](const PROGRESS&) { return TitlesInChild(); });
        TITLES all;
        for (const auto& [area, list] : texts.items())
            all[static_cast<FRU_AREA>(std::stoi(area))] = list.get<std::vector<std::string>>();
        if (all.at(FRU_AREA_BOARD)[0].empty())
            Note(fmt::format("no texts for {}: set FRUDATA_DATADIR to the directory that holds '{}'",
                             Settings().language, TextDirectory(Settings().language)));
        return all;
    }();
    return titles;
}

std::string AreaTitle(FRU_AREA area) {
    const std::string title = Titles().at(area)[0];
    return title.empty() ? AreaRow(area).title : title;
}

std::string Title(const AREA_ROW& row, std::size_t position) {
    const std::size_t fixed = row.fields.size();
    std::string title = Titles().at(row.area)[1 + std::min(position, fixed)];
    if (title.empty())
        title = position < fixed ? row.fields[position].title : "Custom field";
    return position < fixed ? title : fmt::format("{} {}", title, position - fixed + 1);
}

} // namespace Fructl
