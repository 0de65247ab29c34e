#include "tools/fructl/commands/commands.h"

#include "fruimage/repair.h"

#include <CLI/CLI.hpp>

namespace Fructl {

namespace {

/// Guesses nothing: tells the remaining damage, and fails without a repair.
PLAN RepairPlan(const CONTENTS& contents) {
    auto plan = FruImage::Repair(contents.fru);
    if (plan)
        return plan.Take();
    const FruImage::ERROR& error = plan.Error();
    if (error.code == FruImage::REFUSAL::NOTHING_TO_DO && contents.fru.IsSound())
        throw CToolError(EXIT_REFUSED, contents.source.label, "it is sound: there is nothing to repair");
    throw CToolError(EXIT_DAMAGED, contents.source.label, error.text, error.hint);
}

} // namespace

void AddRepair(CLI::App& app) {
    CLI::App& command = NewCommand(app, "repair", "Put right what leaves no doubt: checksums, lengths, the header",
                                   "  fructl repair image.bin --dry-run       what would be changed\n"
                                   "  fructl repair image.bin -o sound.bin\n"
                                   "  fructl repair --at 'PSU 1' --commit     as 'fructl commit'\n"
                                   "Where two repairs are possible, both are named and nothing is changed.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE", "File to repair");
    const auto options = std::make_shared<CHANGE_OPTIONS>();
    options->write.mends = true;
    command.add_flag("--binary", options->binary, "Write a binary image");
    AddChangeOptions(command, *options);
    command.callback([sources, options] { Change(sources->TakeAll(1)[0], RepairPlan, *options); });
}

} // namespace Fructl
