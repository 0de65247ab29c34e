#include "tools/fructl/commands/commands.h"

#include "tools/fructl/compare.h"
#include "tools/fructl/devicesession.h"
#include "tools/fructl/files.h"
#include "tools/fructl/image.h"
#include "tools/fructl/imagesession.h"
#include "tools/fructl/open.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

BYTES ImageOf(const CONTENTS& contents, const EDITS& edits) {
    const std::string& name = contents.source.label;
    BYTES image = contents.source.kind == SOURCE::TEXT     ? ComposeImage(contents.fru, name)
                  : contents.source.kind == SOURCE::DEVICE ? ReadDevice(contents.source, WHOLE)
                                                           : contents.bytes;
    const FRU fru = ParseImage(image);
    if (fru.IsDamaged())
        throw CToolError(EXIT_REFUSED, name, "its image would be damaged: " + fru.ProblemText());
    return edits.IsEmpty() ? image : EditImage(image, fru, edits, name);
}

/// The text format writes neither binary nor 6-bit fields: with --force they become 8-bit text.
EDITS WithDroppedFields(const FRU& fru, EDITS edits) {
    const EDITS dropped = TextForDroppedFields(Edited(fru, edits));
    if (dropped.IsEmpty())
        return edits;
    std::string names;
    for (const ASSIGNMENT& one : dropped.fields)
        names += (names.empty() ? "" : ", ") + one.name.text;
    if (!Settings().force)
        throw CToolError(EXIT_REFUSED, names, "the text format cannot hold binary and 6-bit fields",
                         "--binary keeps them, --force writes them as 8-bit text");
    Note("written as 8-bit text: " + names);
    edits.fields.insert(edits.fields.end(), dropped.fields.begin(), dropped.fields.end());
    CheckRoom(edits, fru);
    return edits;
}

/// Replaces the empty title of a FRU that came without one.
void WriteTitle(const CReplacement& file, const std::string& title) {
    const BYTES bytes = ReadFile(file.Path().string());
    std::string text(bytes.begin(), bytes.end());
    const std::size_t begin = text.find("_FRU_TITLE");
    const std::size_t end = text.find('\n', begin);
    if (begin == std::string::npos || end == std::string::npos)
        return;
    std::string clean = title;
    std::erase_if(clean, [](char character) { return character == '\'' || static_cast<UINT8>(character) < 0x20; });
    text.replace(begin, end - begin, "_FRU_TITLE\t'" + clean + "'");
    file.Write(BYTES(text.begin(), text.end()));
}

constexpr const char* BINARY_HINT = "--binary keeps everything";

/// A quoted line ends at the first quote of its value, a comment begins inside it too, and C1h without its
/// byte ends the area.
void CheckTextValues(const FRU& fru) {
    for (const ENTRY& entry : Entries(fru)) {
        const std::string value(entry.raw.begin(), entry.raw.end());
        const bool lost = value.size() == 1 || value.find('\'') != std::string::npos ||
                          value.find("//") != std::string::npos ||
                          value.find_first_of({"\0\r\n", 3}) != std::string::npos;
        if (lost && entry.type == "text")
            throw CToolError(
                EXIT_REFUSED, entry.name,
                fmt::format("a text file cannot hold \"{}\": no ', no //, no line end, no single character",
                            entry.value),
                BINARY_HINT);
    }
}

/// The file is read back before it takes the place of anything.
void CheckTextFile(const CReplacement& file, const FRU& expected, const std::string& output) {
    CONTENTS written;
    try {
        written = Open(FileSource(file.Path().string()));
    } catch (const CToolError& error) {
        throw CToolError(EXIT_REFUSED, output, "the text format cannot hold this FRU: " + error.m_why, BINARY_HINT);
    }
    std::string lost = written.fru.ProblemText();
    for (const DIFFERENCE& difference : Compare(expected, written.fru))
        lost += (lost.empty() ? "" : ", ") + difference.Name();
    if (!lost.empty())
        throw CToolError(EXIT_REFUSED, output, "the text format cannot hold this FRU: " + lost, BINARY_HINT);
}

void SaveAsText(const CONTENTS& contents, EDITS edits, const std::string& output, const std::string& title) {
    edits = WithDroppedFields(contents.fru, std::move(edits));
    CheckTextValues(Edited(contents.fru, edits));
    const CReplacement file(output);
    SaveText(contents, edits, file.Directory().string(), file.Name());
    const bool untitled = contents.source.kind != SOURCE::TEXT;
    if (!title.empty() || (untitled && !contents.source.title.empty()))
        WriteTitle(file, title.empty() ? contents.source.title : title);
    CheckTextFile(file, Edited(contents.fru, edits), output);
    file.Finish();
}

struct SAVE_OPTIONS {
    std::string output;
    std::string title;
    bool binary = false;
};

} // namespace

void SaveContents(const CONTENTS& contents, const EDITS& edits, const std::string& output, bool binary,
                  const std::string& title) {
    if (binary)
        WriteFile(output, ImageOf(contents, edits));
    else
        SaveAsText(contents, edits, output, title);
}

void AddSave(CLI::App& app) {
    CLI::App& command = NewCommand(app, "save", "Save a FRU as a text file or a binary image",
                                   "  fructl save --system -o board.fru\n"
                                   "  fructl save board.fru --binary -o board.bin   an image that other tools read\n"
                                   "  fructl save board.bin -o board.fru            and back");
    const auto sources = std::make_shared<CSources>(command, "SOURCE -o FILE", "File to save");
    const auto options = std::make_shared<SAVE_OPTIONS>();
    command.add_option("-o,--output", options->output, "File to write")->type_name("FILE")->required();
    command.add_flag("--binary", options->binary, "Write a binary image of the whole FRU");
    command.add_option("--title", options->title, "Title to write into a text file")->type_name("TEXT");
    command.callback([sources, options] {
        const CONTENTS contents = Open(sources->TakeAll(1)[0]);
        contents.RequireSound();
        SaveContents(contents, {}, options->output, options->binary, options->title);
        Note("saved " + options->output);
    });
}

} // namespace Fructl
