#include "tools/fructl/commands/commands.h"

#include "tools/fructl/compare.h"
#include "tools/fructl/files.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

namespace Fructl {

namespace {

/// The area of a word; the info areas have fields instead.
AREA_ID RawArea(const std::vector<std::string>& words, std::size_t count, const char* command) {
    if (words.size() != count)
        throw CToolError(EXIT_USAGE, command, count == 1 ? "an area is missing" : "an area and a file are wanted",
                         "areas with raw bytes: header, internal, multirecord");
    const auto area = FruImage::AreaFromName(words[0]);
    if (!area || AreaRow(*area).IsInfo())
        throw CToolError(EXIT_USAGE, words[0], "is no area with raw bytes",
                         "those are: header, internal, multirecord. 'fructl get' reads fields");
    return *area;
}

struct DUMP_OPTIONS {
    std::string output;
    bool binary = false;
};

void PrintBytes(const SOURCE& source, AREA_ID id, const BYTES& bytes, const DUMP_OPTIONS& options) {
    if (!options.output.empty())
        return WriteFile(options.output, bytes);
    if (options.binary && isatty(STDOUT_FILENO) != 0)
        throw CToolError(EXIT_USAGE, "dump", "bytes are not written to a terminal", "give -o FILE");
    if (Settings().json)
        PrintJson({{"source", JsonSource(source)}, {"area", AreaName(id)}, {"raw", Hex(bytes)}});
    else
        PrintText(options.binary ? std::string(bytes.begin(), bytes.end()) : HexDump(bytes));
}

void Dump(CSources& sources, const DUMP_OPTIONS& options) {
    const SOURCE source = sources.TakeOne();
    const AREA_ID id = RawArea(sources.Words(), 1, "dump");
    const CONTENTS contents = Open(source);
    const auto entry = FindEntry(contents.fru, FruImage::FieldNameText({id}));
    if (!entry)
        RequireAreas(contents, {id});
    if (!entry)
        throw CToolError(EXIT_REFUSED, source.label, fmt::format("it has no {} area", AreaName(id)));
    PrintBytes(source, id, entry->raw, options);
    RequireAreas(contents, {id});
}

void Load(CSources& sources, const CHANGE_OPTIONS& options, const EDIT_OPTIONS& edits) {
    const SOURCE source = sources.TakeOne();
    const AREA_ID id = RawArea(sources.Words(), 2, "load");
    const CHANGES changes = {{ReplaceArea(id, AreaBytes(sources.Words()[1]), edits.resizeInternal)}, {}};
    Change(
        source, [&](const CONTENTS& contents) { return MakePlan(contents, changes, edits.limits); }, options);
}

} // namespace

void AddDump(CLI::App& app) {
    CLI::App& command = NewCommand(app, "dump", "Print the raw bytes of the header, internal use or multi-record area",
                                   "  fructl dump board.fru header\n"
                                   "  fructl dump --system multirecord -o records.bin\n"
                                   "  fructl dump image.bin internal --binary | md5sum");
    const auto sources = std::make_shared<CSources>(command, "SOURCE AREA", "File and area");
    const auto options = std::make_shared<DUMP_OPTIONS>();
    command.add_option("-o,--output", options->output, "File for the bytes")->type_name("FILE");
    command.add_flag("--binary", options->binary, "Bytes instead of hexadecimal text");
    command.callback([sources, options] { Dump(*sources, *options); });
}

void AddLoad(CLI::App& app) {
    CLI::App& command = NewCommand(app, "load", "Replace the raw bytes of the internal use or multi-record area",
                                   "  fructl load board.fru internal bytes.hex\n"
                                   "  fructl load image.bin multirecord records.bin -o changed.bin\n"
                                   "  fructl load --system internal bytes.hex --commit\n"
                                   "FILE holds hexadecimal text, as 'fructl dump' prints it, or the bytes themselves.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE AREA FILE", "File, area and bytes");
    const auto options = std::make_shared<CHANGE_OPTIONS>();
    const auto edits = std::make_shared<EDIT_OPTIONS>();
    AddChangeOptions(command, *options);
    AddLayoutOptions(command, *edits);
    command.callback([sources, options, edits] { Load(*sources, *options, *edits); });
}

} // namespace Fructl
