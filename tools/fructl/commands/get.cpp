#include "tools/fructl/commands/commands.h"

#include "tools/fructl/compare.h"
#include "tools/fructl/fieldname.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

void Get(CSources& sources, bool raw) {
    const SOURCE source = sources.TakeOne();
    std::vector<FIELD_NAME> names;
    std::vector<AREA_ID> areas;
    for (const std::string& word : sources.Words()) {
        names.push_back(NamedField(word));
        areas.push_back(names.back().area);
    }
    if (names.empty())
        throw CToolError(EXIT_USAGE, "get", "a field is missing",
                         "for example: fructl get board.fru board.serial-number");
    const CONTENTS contents = Open(source);
    nlohmann::json values = nlohmann::json::object();
    std::string text;
    for (const FIELD_NAME& name : names) {
        const auto entry = FindEntry(contents.fru, name);
        if (!entry)
            RequireAreas(contents, {name.area});
        if (!entry)
            throw CToolError(EXIT_REFUSED, FieldNameText(name), fmt::format("{} has no such field", source.label),
                             "'fructl show' lists the fields that it has");
        text += (raw ? Hex(entry->raw) : entry->bare) + "\n";
        values[entry->name] = {{"value", entry->bare}, {"type", entry->type}, {"raw", Hex(entry->raw)}};
    }
    if (Settings().json)
        PrintJson({{"source", JsonSource(source)}, {"values", std::move(values)}});
    else
        PrintText(text);
    RequireAreas(contents, areas);
}

} // namespace

void AddGet(CLI::App& app) {
    CLI::App& command = NewCommand(app, "get", "Print the bare values of fields, one a line",
                                   "  fructl get board.fru board.serial-number\n"
                                   "  fructl get --system product.asset-tag chassis.custom1\n"
                                   "  fructl get image.bin board.mfg-date --json");
    const auto sources = std::make_shared<CSources>(command, "SOURCE AREA.FIELD...", "File, then names of fields");
    const auto raw = std::make_shared<bool>(false);
    command.add_flag("--raw", *raw, "The fields' bytes in hexadecimal");
    command.callback([sources, raw] { Get(*sources, *raw); });
}

} // namespace Fructl
