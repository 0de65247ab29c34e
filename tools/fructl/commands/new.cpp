#include "tools/fructl/commands/commands.h"

#include "tools/fructl/files.h"
#include "tools/fructl/jsonimage.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace Fructl {

namespace {

struct NEW_OPTIONS {
    std::string output;
    std::string from;
    EDIT_OPTIONS edits;
};

/// The image that the document, or nothing, builds.
BYTES Built(const JSON_IMAGE& json, const NEW_OPTIONS& options) {
    FruImage::DESCRIPTION description = json.description;
    if (options.edits.limits.deviceSize != 0)
        description.size = options.edits.limits.deviceSize;
    for (FruImage::AREA_DESCRIPTION& area : description.areas)
        area.spare = options.edits.limits.spare;
    auto built = FruImage::Build(description);
    if (!built)
        Refuse(built.Error(), options.from.empty() ? options.output : options.from);
    return built.Take();
}

void New(const std::vector<std::string>& words, const NEW_OPTIONS& options) {
    JSON_IMAGE json;
    if (!options.from.empty()) {
        const BYTES document = ReadFile(options.from);
        json = ReadJsonImage(std::string(document.begin(), document.end()), options.from);
    }
    if (!words.empty()) {
        const CHANGES changes = ParseEdits(words, options.edits);
        json.changes.edits.insert(json.changes.edits.end(), changes.edits.begin(), changes.edits.end());
        json.changes.records.insert(json.changes.records.end(), changes.records.begin(), changes.records.end());
    }
    BYTES bytes = Built(json, options);
    if (!json.changes.edits.empty() || !json.changes.records.empty()) {
        const SOURCE source{SOURCE::IMAGE, options.output, {}, {}};
        bytes = MakePlan({source, {}, FruImage::Parse(bytes)}, json.changes, options.edits.limits).bytes;
    }
    const FRU fru = FruImage::Parse(bytes);
    WriteFile(options.output, bytes);
    Note(fmt::format("made {}, {}", options.output, Counted(bytes.size(), "byte")));
    if (fru.IsSound() && fru.areas.empty())
        Note("it has no area yet: 'fructl set' adds one with its first field");
}

} // namespace

void AddNew(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "new", "Make a binary image from nothing, or from JSON",
                   "  fructl new -o board.bin board.mfg-date=now board.serial-number=AB123 --size 256\n"
                   "  fructl new -o psu.bin --spare 20 product.name='PSU 800' product.custom+='Lot 7'\n"
                   "  fructl show --json old.bin | fructl new --from - -o same.bin\n"
                   "An area is made when its first field is named; --spare is room for its fields to grow.");
    SetUsage(command, "-o FILE [AREA.FIELD=VALUE...]");
    const auto options = std::make_shared<NEW_OPTIONS>();
    const auto words = std::make_shared<std::vector<std::string>>();
    command.add_option("arguments", *words, "Assignments");
    command.add_option("-o,--output", options->output, "File to write")->type_name("FILE")->required();
    command.add_option("--from", options->from, "JSON, as 'fructl show --json' prints it; -: standard input")
        ->type_name("FILE");
    AddEditOptions(command, options->edits);
    command.callback([words, options] { New(*words, *options); });
}

} // namespace Fructl
