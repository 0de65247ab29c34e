#include "tools/fructl/savefru.h"

#include "tools/fructl/commands/commands.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace Fructl {

namespace {

void Save(const SOURCE& source, const TARGET& target) {
    const CONTENTS contents = Open(source, target.binary ? READING::RESCUE : READING::WHOLE);
    SaveFru(contents, contents.fru, target);
    NoteDamage(source.label, contents.fru);
    Note("saved " + target.path);
    if (!contents.failure.empty())
        throw CToolError(
            EXIT_DEVICE, source.label, contents.failure,
            fmt::format("{} holds the {} in front of it", target.path, Counted(contents.bytes.size(), "byte")));
}

} // namespace

void AddSave(CLI::App& app) {
    CLI::App& command = NewCommand(app, "save", "Save a FRU as a text file or a binary image",
                                   "  fructl save --system -o board.fru\n"
                                   "  fructl save board.fru --binary -o board.bin   an image that other tools read\n"
                                   "  fructl save board.bin -o board.fru            and back\n"
                                   "With --binary, a device or file is copied byte for byte, damaged or blank too.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE -o FILE", "File to save");
    const auto target = std::make_shared<TARGET>();
    command.add_option("-o,--output", target->path, "File to write")->type_name("FILE")->required();
    command.add_flag("--binary", target->binary, "Write a binary image of the whole FRU");
    command.add_option("--title", target->title, "Title to write into a text file")->type_name("TEXT");
    command.callback([sources, target] { Save(sources->TakeAll(1)[0], *target); });
}

} // namespace Fructl
