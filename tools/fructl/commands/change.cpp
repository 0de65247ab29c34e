#include "tools/fructl/commands/commands.h"

#include "tools/fructl/difference.h"
#include "tools/fructl/files.h"
#include "tools/fructl/lock.h"
#include "tools/fructl/savefru.h"
#include "tools/fructl/words/words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <iostream>
#include <optional>

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
    if (toFile && options.write.noBackup)
        throw CToolError(EXIT_USAGE, "--no-backup", "is for devices: of a file, only --backup keeps one");
    if (!toFile && options.binary)
        throw CToolError(EXIT_USAGE, "--binary", "is for files: a device always has a binary image");
    if (!options.output.empty() && !options.write.backup.empty())
        throw CToolError(EXIT_USAGE, "--backup", "with -o the source stays as it is");
    if (source.label == STANDARD_STREAM && !options.write.backup.empty())
        throw CToolError(EXIT_USAGE, "--backup", "standard input stays as it is");
}

/// Whether there is somebody to ask, and a need to.
bool IsAsked(const WRITE_OPTIONS& options) {
    return !options.yes && isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}

/// A file's new contents, and where the options put them.
struct FILE_CHANGE {
    const CONTENTS& contents;
    const PLAN& plan;
    const FRU after;
    const std::string difference;
    const std::string& output;
};

void WriteChange(const FILE_CHANGE& change, const CHANGE_OPTIONS& options) {
    const SOURCE& source = change.contents.source;
    if (options.asks && !change.plan.IsEmpty() && IsAsked(options.write)) {
        Note(fmt::format("{}:\n{}", source.label, change.difference));
        Confirm(change.output, options.write);
    }
    if (!options.write.backup.empty())
        KeepBackup(source, change.contents.bytes, options.write.backup);
    SaveFru(change.contents, change.after, {change.output, {}, options.binary || source.kind == SOURCE::IMAGE});
    if (source.kind == SOURCE::IMAGE && change.plan.bytes.size() > change.contents.bytes.size())
        Note(fmt::format("the image grows from {} to {}; --size says how many a device has",
                         Counted(change.contents.bytes.size(), "byte"), change.plan.bytes.size()));
    const std::string done = change.plan.IsEmpty() ? Say("saved {}", change.output) : Say("changed {}", change.output);
    Note(done + "\n" + change.difference);
}

void ChangeFile(SOURCE source, const PLANNER& planner, const CHANGE_OPTIONS& options) {
    std::optional<CDirectoryLock> lock;
    if (!options.write.dryRun && options.output.empty() && source.label != STANDARD_STREAM) {
        lock.emplace(source.label);
        // The last holder of the lock may have changed the file.
        source = FileSource(source.label);
    }
    const CONTENTS contents = Open(source, READING::WHOLE);
    const PLAN plan = planner(contents);
    const FRU after = FruImage::Parse(plan.bytes);
    const FILE_CHANGE change{contents, plan, after, DescribePlan(plan, contents.fru, after),
                             options.output.empty() ? source.label : options.output};
    NoteDamage(source.label, after);
    if (plan.IsEmpty())
        Note("nothing to change: every field has its value already");
    const bool writes = !options.write.dryRun && !(plan.IsEmpty() && options.output.empty());
    if (writes)
        WriteChange(change, options);
    else if (options.write.dryRun && !Settings().json)
        PrintText(fmt::format("{}:\n{}{}\n", ShownLabel(source), change.difference, Say("Nothing was written.")));
    if (Settings().json && change.output != STANDARD_STREAM)
        PrintJson({{"source", JsonSource(source)},
                   {"changes", JsonChanges(contents.fru, after)},
                   {"moves", JsonMoves(plan)},
                   {"output", change.output},
                   {"written", writes}});
}

} // namespace

void AddWriteOptions(CLI::App& command, WRITE_OPTIONS& options) {
    CLI::Option* backup =
        command
            .add_option("--backup", options.backup,
                        "Name of the backup, or a directory for it; a device gets one without it, too")
            ->type_name("FILE");
    command.add_flag("--no-backup", options.noBackup, "Keep no backup of a device")->excludes(backup);
    command.add_flag("--dry-run", options.dryRun, "Show the difference, write nothing");
    command.add_flag("--yes", options.yes, "Do not ask before anything is written");
}

void AddChangeOptions(CLI::App& command, CHANGE_OPTIONS& options) {
    command.add_option("-o,--output", options.output, "File to write instead")->type_name("FILE");
    command.add_flag("--commit", options.commit, "Write to the device");
    AddWriteOptions(command, options.write);
}

void AddLayoutOptions(CLI::App& command, EDIT_OPTIONS& options) {
    command.add_option("--size", options.limits.deviceSize, "Bytes of the device, for areas that grow")
        ->type_name("BYTES");
    command.add_option("--spare", options.limits.spare, "Free bytes in each new area")->type_name("BYTES");
    command.add_flag("--resize-internal", options.resizeInternal, "Let the internal use area have another length");
}

void AddEditOptions(CLI::App& command, EDIT_OPTIONS& options) {
    command.add_option("--remove", options.remove, "Custom field, or area, to remove")
        ->allow_extra_args(false)
        ->type_name("NAME");
    AddLayoutOptions(command, options);
}

void Confirm(const std::string& target, const WRITE_OPTIONS& options, const std::string& odd) {
    std::fflush(stdout);
    if (options.yes)
        return;
    if (!IsAsked(options)) {
        if (!odd.empty() && !Settings().force)
            throw CToolError(EXIT_REFUSED, "write " + target, odd, "without a terminal to ask, --yes insists on it");
        return;
    }
    const std::string yes = Say("yes");
    fmt::print(stderr, "{}{}{} [{}/N] ", Spoken(odd), odd.empty() ? "" : "\n", Say("write {}?", target), yes[0]);
    std::string answer;
    std::getline(std::cin, answer);
    if (answer.empty() || !(yes == answer || yes.substr(0, 1) == answer || answer == "y" || answer == "yes"))
        throw CToolError(EXIT_REFUSED, "write " + target, "the answer is no: nothing was written");
}

std::string Oddity(const CONTENTS& present) {
    if (present.fru.state == STATE::FRU)
        return {};
    const std::string problem = ProblemText(present.fru);
    return "what is there now does not tell what it is: " + (problem.empty() ? present.failure : problem);
}

void Change(const SOURCE& source, const PLANNER& planner, const CHANGE_OPTIONS& options) {
    CheckOptions(source, options);
    if (source.kind == SOURCE::DEVICE && options.output.empty())
        Commit(source, planner, options.write);
    else
        ChangeFile(source, planner, options);
}

} // namespace Fructl
