#include "tools/fructl/commands/commands.h"

#include <CLI/CLI.hpp>

namespace Fructl {

void AddSet(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "set", "Change fields of a file, or of a device with --commit",
                   "  fructl set board.fru board.serial-number=AB123 product.asset-tag='Rack 7'\n"
                   "  fructl set image.bin chassis.type='Rack mount chassis' -o changed.bin\n"
                   "  fructl set image.bin board.mfg-date=now product.custom+='Rack 7'     a new custom field\n"
                   "  fructl set image.bin product.custom3-                                without that one\n"
                   "  fructl set image.bin board.part-number:6-bit=AB-12 board.language=German\n"
                   "  fructl set image.bin multirecord.1.rated-capacity=750\n"
                   "  fructl set image.bin internal.data=@bytes.hex multirecord.data=@records.bin\n"
                   "  fructl set --system product.asset-tag=12345 --commit\n"
                   "An area that outgrows its room grows into free bytes, or later areas move.\n"
                   "All values are checked before the first is changed. A file is replaced in one step.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE AREA.FIELD=VALUE...", "File, then assignments");
    const auto options = std::make_shared<CHANGE_OPTIONS>();
    const auto edits = std::make_shared<EDIT_OPTIONS>();
    command.add_flag("--binary", options->binary, "Write a binary image");
    AddChangeOptions(command, *options);
    AddEditOptions(command, *edits);
    command.callback([sources, options, edits] {
        const SOURCE source = sources->TakeOne();
        const CHANGES changes = ParseEdits(sources->Words(), *edits);
        Change(
            source, [&](const CONTENTS& contents) { return MakePlan(contents, changes, edits->limits); }, *options);
    });
}

} // namespace Fructl
