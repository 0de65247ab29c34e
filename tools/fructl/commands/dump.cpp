#include "tools/fructl/commands/commands.h"

#include "tools/fructl/files.h"
#include "tools/fructl/open.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>

#include <unistd.h>

namespace Fructl {

namespace {

/// The area of a word; the info areas are reached field by field.
FRU_AREA RawArea(const std::vector<std::string>& words, std::size_t count, const char* command) {
    if (words.size() != count)
        throw CToolError(EXIT_USAGE, command, count == 1 ? "an area is missing" : "an area and a file are wanted",
                         "areas with raw bytes: header, internal, multirecord");
    const auto area = AreaFromName(words[0]);
    if (!area || (*area != FRU_AREA_COMMON_HEADER && AreaRow(*area).headerLength != 0))
        throw CToolError(EXIT_USAGE, words[0], "is no area with raw bytes",
                         "those are: header, internal, multirecord. 'fructl get' reads fields");
    return *area;
}

struct DUMP_OPTIONS {
    std::string output;
    bool binary = false;
};

void Dump(CSources& sources, const DUMP_OPTIONS& options) {
    const SOURCE source = sources.TakeOne();
    const FRU_AREA id = RawArea(sources.Words(), 1, "dump");
    const CONTENTS contents = Open(source);
    contents.RequireSound();
    const AREA* area = contents.fru.Find(id);
    if (id != FRU_AREA_COMMON_HEADER && !area)
        throw CToolError(EXIT_REFUSED, source.label, fmt::format("it has no {} area", AreaName(id)));
    const BYTES& bytes = area ? area->bytes : contents.fru.header;
    if (!options.output.empty())
        return WriteFile(options.output, bytes);
    if (options.binary && isatty(STDOUT_FILENO) != 0)
        throw CToolError(EXIT_USAGE, "dump", "bytes are not written to a terminal", "give -o FILE");
    if (Settings().json)
        PrintJson({{"source", JsonSource(source)}, {"area", AreaName(id)}, {"raw", Hex(bytes)}});
    else
        PrintText(options.binary ? std::string(bytes.begin(), bytes.end()) : HexDump(bytes));
}

/// The bytes of a file: hexadecimal text, in plain pairs or as `dump` prints it, or the bytes themselves.
BYTES AreaBytes(const std::string& path) {
    BYTES bytes = ReadFile(path);
    const bool isText =
        std::all_of(bytes.begin(), bytes.end(), [](UINT8 byte) { return std::isprint(byte) || std::isspace(byte); });
    if (!isText)
        return bytes;
    std::string digits;
    std::size_t begin = 0;
    const std::string text(bytes.begin(), bytes.end());
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        const bool isDump = line.size() > 6 && line[4] == ' ' && line[5] == ' ';
        digits += (isDump ? line.substr(6, 47) : line) + " ";
        begin = end + 1;
    }
    const auto parsed = FromHex(digits);
    if (!parsed)
        throw CToolError(EXIT_REFUSED, path, "is neither hexadecimal text nor binary");
    return *parsed;
}

EDITS AreaEdits(FRU_AREA id, const BYTES& bytes, const FRU& fru, const std::string& path) {
    const AREA* area = fru.Find(id);
    if (id == FRU_AREA_COMMON_HEADER)
        throw CToolError(EXIT_REFUSED, "header", "it says where the areas lie and cannot be replaced",
                         "'fructl restore' writes whole images");
    if (!area)
        throw CToolError(EXIT_REFUSED, path, fmt::format("this FRU has no {} area", AreaName(id)));
    EDITS edits;
    if (id == FRU_AREA_INTERNAL_USE) {
        if (bytes.size() != area->bytes.size())
            throw CToolError(EXIT_REFUSED, path,
                             fmt::format("it has {} bytes, the internal use area {}", bytes.size(), area->bytes.size()),
                             "the area keeps its length");
        edits.internalUse = bytes;
    } else {
        FRU checked;
        const AREA records = ParseMultiRecordArea(area->offset, bytes, true, checked);
        const bool ends = !records.records.empty() && (bytes[records.records.back() + 1] & 0x80) != 0;
        if (checked.IsDamaged() || !ends)
            throw CToolError(EXIT_REFUSED, path,
                             checked.IsDamaged() ? checked.ProblemText() : "its last record has no end-of-list bit");
        edits.multiRecord = bytes;
    }
    if (bytes == area->bytes)
        return {};
    return edits;
}

struct LOAD_OPTIONS {
    std::string output;
    bool commit = false;
    WRITE_OPTIONS write;
};

void Load(CSources& sources, const LOAD_OPTIONS& options) {
    const SOURCE source = sources.TakeOne();
    const FRU_AREA id = RawArea(sources.Words(), 2, "load");
    const std::string& path = sources.Words()[1];
    const BYTES bytes = AreaBytes(path);
    if (source.kind == SOURCE::DEVICE) {
        if (!options.commit)
            throw CToolError(EXIT_USAGE, source.label, "is a device", "--commit writes it");
        return Commit(
            source, [&](const FRU& fru) { return AreaEdits(id, bytes, fru, path); }, options.write);
    }
    const CONTENTS contents = Open(source);
    contents.RequireSound();
    SaveContents(contents, AreaEdits(id, bytes, contents.fru, path),
                 options.output.empty() ? source.label : options.output, source.kind == SOURCE::IMAGE);
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
    const auto options = std::make_shared<LOAD_OPTIONS>();
    command.add_option("-o,--output", options->output, "File to write instead")->type_name("FILE");
    command.add_flag("--commit", options->commit, "Write to the device");
    AddWriteOptions(command, options->write);
    command.callback([sources, options] { Load(*sources, *options); });
}

} // namespace Fructl
