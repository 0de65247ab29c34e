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
    std::vector<std::string> names;
    std::vector<AREA_ID> areas;
    for (const std::string& word : sources.Words()) {
        const auto record = ParseRecordName(word);
        names.push_back(record ? RecordNameText(record->index, record->key) : word);
        areas.push_back(record ? AREA_ID::MULTIRECORD : NamedField(word).area);
    }
    if (names.empty())
        throw CToolError(EXIT_USAGE, "get", "a field is missing",
                         "for example: fructl get board.fru board.serial-number");
    const CONTENTS contents = Open(source);
    nlohmann::json values = nlohmann::json::object();
    std::string text;
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto entry = FindEntry(contents.fru, names[index]);
        if (!entry)
            RequireAreas(contents, {areas[index]});
        if (!entry)
            throw CToolError(EXIT_REFUSED, names[index], fmt::format("{} has no such field", source.label),
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
