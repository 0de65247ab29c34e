#include "tools/fructl/commands/commands.h"

#include "tools/fructl/compare.h"
#include "tools/fructl/open.h"
#include "tools/fructl/standardnames.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

/// The bare value: a chassis type by its name alone, so that `set` takes it back.
std::string BareValue(const ENTRY& entry, const FIELD_NAME& name) {
    const bool isType = name.area == FRU_AREA_CHASSIS && name.part == FIELD_NAME::FIXED && name.index == 0;
    if (!isType || entry.raw.empty())
        return entry.value;
    const std::string_view text = ChassisTypeName(entry.raw[0]);
    return text.empty() ? std::to_string(entry.raw[0]) : std::string(text);
}

void Get(CSources& sources, bool raw) {
    const SOURCE source = sources.TakeOne();
    std::vector<FIELD_NAME> names;
    for (const std::string& word : sources.Words())
        names.push_back(ParseFieldName(word));
    if (names.empty())
        throw CToolError(EXIT_USAGE, "get", "a field is missing",
                         "for example: fructl get board.fru board.serial-number");
    const CONTENTS contents = Open(source);
    contents.RequireSound();
    nlohmann::json values = nlohmann::json::object();
    std::string text;
    for (const FIELD_NAME& name : names) {
        const auto entry = FindEntry(contents.fru, name);
        if (!entry)
            throw CToolError(EXIT_REFUSED, name.text, fmt::format("{} has no such field", source.label),
                             "'fructl show' lists the fields that it has");
        text += (raw ? Hex(entry->raw) : BareValue(*entry, name)) + "\n";
        values[name.text] = {{"value", BareValue(*entry, name)}, {"type", entry->type}, {"raw", Hex(entry->raw)}};
    }
    if (Settings().json)
        PrintJson({{"source", JsonSource(source)}, {"values", std::move(values)}});
    else
        PrintText(text);
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
