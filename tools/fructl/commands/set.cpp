#include "tools/fructl/commands/commands.h"

#include "tools/fructl/open.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace Fructl {

namespace {

struct SET_OPTIONS {
    std::string output;
    bool binary = false;
    bool commit = false;
    WRITE_OPTIONS write;
};

void Set(CSources& sources, const SET_OPTIONS& options) {
    const SOURCE source = sources.TakeOne();
    if (sources.Words().empty())
        throw CToolError(EXIT_USAGE, "set", "an AREA.FIELD=VALUE is missing", "for example: board.serial-number=AB123");
    if (source.kind == SOURCE::DEVICE && options.output.empty()) {
        if (!options.commit)
            throw CToolError(EXIT_USAGE, source.label, "is a device",
                             "--commit writes it, -o FILE writes the changed FRU to a file");
        return Commit(
            source, [&](const FRU& fru) { return ParseAssignments(sources.Words(), fru); }, options.write);
    }
    const CONTENTS contents = Open(source);
    contents.RequireSound();
    const EDITS edits = ParseAssignments(sources.Words(), contents.fru);
    if (edits.IsEmpty())
        Note("nothing to change: every field has its value already");
    if (edits.IsEmpty() && options.output.empty())
        return;
    const std::string& output = options.output.empty() ? source.label : options.output;
    SaveContents(contents, edits, output, options.binary || source.kind == SOURCE::IMAGE);
    Note(fmt::format("changed {}\n{}", output, DescribeEdits(edits)));
}

} // namespace

void AddSet(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "set", "Change fields of a file, or of a device with --commit",
                   "  fructl set board.fru board.serial-number=AB123 product.asset-tag='Rack 7'\n"
                   "  fructl set image.bin chassis.type='Rack mount chassis' -o changed.bin\n"
                   "  fructl set board.fru board.mfg-date=2026-05-31T14:30Z product.custom1=\n"
                   "  fructl set --system product.asset-tag=12345 --commit\n"
                   "All values are checked before the first is changed. A file is replaced in one step.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE AREA.FIELD=VALUE...", "File, then assignments");
    const auto options = std::make_shared<SET_OPTIONS>();
    command.add_option("-o,--output", options->output, "File to write instead")->type_name("FILE");
    command.add_flag("--binary", options->binary, "Write a binary image");
    command.add_flag("--commit", options->commit, "Write to the device");
    AddWriteOptions(command, options->write);
    command.callback([sources, options] { Set(*sources, *options); });
}

} // namespace Fructl
