#include "tools/fructl/commands/commands.h"

#include "tools/fructl/standardnames.h"
#include "tools/fructl/titles.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

struct LISTED {
    std::string name;
    std::string title;
    std::string hint;
};

std::string Hint(const FIELD_ROW& field) {
    switch (field.kind) {
    case FIELD_KIND::CHASSIS_TYPE:
        return "a name or number, see below";
    case FIELD_KIND::DATE:
        return "2026-05-31, 2026-05-31T14:30Z (UTC) or unspecified";
    default:
        return {};
    }
}

std::vector<LISTED> AllFields() {
    std::vector<LISTED> all = {{"header.data", "Common header", "read only"}};
    for (const AREA_ROW& row : Areas()) {
        if (row.headerLength == 0) {
            all.push_back({fmt::format("{}.data", row.name), AreaTitle(row.area), "read only: see 'fructl load'"});
            continue;
        }
        for (std::size_t position = 0; position < row.fields.size(); ++position)
            all.push_back({FieldName(row, position), Title(row, position), Hint(row.fields[position])});
        all.push_back(
            {FieldName(row, row.fields.size()), Title(row, row.fields.size()), "and so on, in the order of the image"});
        if (row.area != FRU_AREA_CHASSIS)
            all.push_back({fmt::format("{}.language", row.name), "Language", "read only"});
    }
    return all;
}

void PrintFieldsText() {
    std::vector<std::vector<std::string>> rows;
    for (const LISTED& field : AllFields())
        rows.push_back({field.name, field.title, Colored(COLOR::DIM, field.hint)});
    PrintText("Fields\n" + Table(rows) + "\nChassis types\n");
    std::vector<std::vector<std::string>> types;
    constexpr UINT8 HALF = 16;
    for (UINT8 type = 1; type <= HALF; ++type)
        types.push_back({fmt::format("{:2}", type), std::string(ChassisTypeName(type)), fmt::format("{}", type + HALF),
                         std::string(ChassisTypeName(static_cast<UINT8>(type + HALF)))});
    PrintText(Table(types));
}

void ListFields(bool namesOnly) {
    if (Settings().json) {
        nlohmann::json fields = nlohmann::json::array();
        for (const LISTED& field : AllFields())
            fields.push_back({{"name", field.name}, {"title", field.title}});
        PrintJson({{"fields", std::move(fields)}});
    } else if (namesOnly) {
        for (const LISTED& field : AllFields())
            PrintText(field.name + "\n");
    } else {
        PrintFieldsText();
    }
}

} // namespace

void AddFields(CLI::App& app) {
    CLI::App& command = NewCommand(app, "fields", "List the names of all fields",
                                   "  fructl fields                     names and titles\n"
                                   "  fructl fields --lang de-de        with German titles\n"
                                   "  fructl fields --names             names only, for scripts");
    const auto namesOnly = std::make_shared<bool>(false);
    command.add_flag("--names", *namesOnly, "Names only");
    command.callback([namesOnly] { ListFields(*namesOnly); });
}

} // namespace Fructl
