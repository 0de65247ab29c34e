#include "tools/fructl/commands/commands.h"

#include "tools/fructl/difference.h"
#include "tools/fructl/files.h"
#include "tools/fructl/savefru.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <iostream>

#include <unistd.h>

namespace Fructl {

namespace {

void CheckOptions(const SOURCE& source, const CHANGE_OPTIONS& options) {
    const bool toFile = source.kind != SOURCE::DEVICE || !options.output.empty();
    if (!toFile && !options.commit && !options.write.dryRun)
        throw CToolError(EXIT_USAGE, source.label, "is a device",
                         "--commit writes it, -o FILE writes the changed FRU to a file");
    if (toFile && options.commit)
        throw CToolError(EXIT_USAGE, "--commit", "writes a device, and here a file is to be written");
    if (!options.output.empty() && !options.write.backup.empty())
        throw CToolError(EXIT_USAGE, "--backup", "with -o the source stays as it is");
}

void ChangeFile(const SOURCE& source, const PLANNER& planner, const CHANGE_OPTIONS& options) {
    const CONTENTS contents = Open(source, READING::WHOLE);
    const PLAN plan = planner(contents);
    const FRU after = FruImage::Parse(plan.bytes);
    NoteDamage(source.label, after);
    const std::string& output = options.output.empty() ? source.label : options.output;
    const bool changesNothing = plan.IsEmpty();
    const std::string difference = DescribePlan(plan, contents.fru, after);
    if (changesNothing)
        Note("nothing to change: every field has its value already");
    const bool writes = !options.write.dryRun && !(changesNothing && options.output.empty());
    if (Settings().json && output != STANDARD_STREAM)
        PrintJson({{"source", JsonSource(source)},
                   {"changes", JsonChanges(contents.fru, after)},
                   {"moves", JsonMoves(plan)},
                   {"output", output},
                   {"written", writes}});
    else if (options.write.dryRun)
        PrintText(fmt::format("{}:\n{}Nothing was written.\n", source.label, difference));
    if (!writes)
        return;
    if (!options.write.backup.empty())
        KeepBackup(source, contents.bytes, options.write.backup);
    SaveFru(contents, after, {output, {}, options.binary || source.kind == SOURCE::IMAGE});
    if (source.kind == SOURCE::IMAGE && plan.bytes.size() > contents.bytes.size())
        Note(fmt::format("the image grows from {} to {}; --size says how many a device has",
                         Counted(contents.bytes.size(), "byte"), plan.bytes.size()));
    Note(fmt::format("changed {}\n{}", output, difference));
}

} // namespace

void AddWriteOptions(CLI::App& command, WRITE_OPTIONS& options) {
    command.add_option("--backup", options.backup, "Name of the backup image, or a directory for it")
        ->type_name("FILE");
    command.add_flag("--no-backup", options.noBackup, "Keep no backup of a device");
    command.add_flag("--dry-run", options.dryRun, "Show the difference, write nothing");
    command.add_flag("--yes", options.yes, "Do not ask before a device is written");
}

void AddChangeOptions(CLI::App& command, CHANGE_OPTIONS& options) {
    command.add_option("-o,--output", options.output, "File to write instead")->type_name("FILE");
    command.add_flag("--commit", options.commit, "Write to the device");
    AddWriteOptions(command, options.write);
}

void AddEditOptions(CLI::App& command, EDIT_OPTIONS& options) {
    command.add_option("--remove", options.remove, "Custom field, or area, to remove")
        ->allow_extra_args(false)
        ->type_name("NAME");
    command.add_option("--size", options.limits.deviceSize, "Bytes of the device, for areas that grow")
        ->type_name("BYTES");
    command.add_option("--spare", options.limits.spare, "Free bytes in each new area")->type_name("BYTES");
    command.add_flag("--resize-internal", options.resizeInternal, "Let the internal use area have another length");
}

void Confirm(const std::string& question, const WRITE_OPTIONS& options) {
    if (options.yes || isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0)
        return;
    fmt::print(stderr, "{}? [y/N] ", question);
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "yes")
        throw CToolError(EXIT_REFUSED, "answer", "nothing was written");
}

void Change(const SOURCE& source, const PLANNER& planner, const CHANGE_OPTIONS& options) {
    CheckOptions(source, options);
    if (source.kind == SOURCE::DEVICE && options.output.empty())
        Commit(source, planner, options.write);
    else
        ChangeFile(source, planner, options);
}

} // namespace Fructl
