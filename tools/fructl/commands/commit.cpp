#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicesession.h"
#include "tools/fructl/difference.h"
#include "tools/fructl/files.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/lock.h"
#include "tools/fructl/words/words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

namespace Fructl {

namespace {

/// A name made from the device's and the time.
std::string BackupStem(const SOURCE& device) {
    std::string stem = device.label;
    std::replace_if(
        stem.begin(), stem.end(), [](unsigned char c) { return !std::isalnum(c); }, '-');
    const std::time_t now = std::time(nullptr);
    char stamp[32] = "";
    std::strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%SZ", std::gmtime(&now));
    return fmt::format("fru-backup-{}-{}.{}", stem, stamp, device.kind == SOURCE::TEXT ? "fru" : "bin");
}

/// Takes the first free name by an empty file: an older backup must survive, and so must that of a commit beside this
/// one. Anything but a regular file is written through.
std::string ClaimBackupName(const SOURCE& device, const std::string& given) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    std::string stem = given;
    if (given.empty() || fs::is_directory(given, ignored))
        stem = (fs::path(given) / BackupStem(device)).string();
    std::string name = stem;
    for (int number = 2; stem != STANDARD_STREAM; ++number) {
        const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file >= 0)
            close(file);
        if (file >= 0 || errno != EEXIST || !fs::is_regular_file(name, ignored))
            break;
        name = fmt::format("{}.{}", stem, number);
    }
    return name;
}

/// A word for the shell.
std::string Quoted(std::string_view word) {
    std::string text = "'";
    for (const char character : word)
        text += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return text + "'";
}

/// By its address: names of the repository may not be unique.
std::string DeviceArgument(const SOURCE& device) {
    const std::string address = DeviceText(device);
    return address == AddressText({}) ? "system" : device.isEeprom ? Quoted(address) : address;
}

/// The way of a plan onto a device: through the library if it writes exactly that, else byte by byte.
std::optional<LIBRARY_CHANGES> ThroughLibrary(const CONTENTS& contents, const PLAN& plan) {
    if (contents.source.isEeprom || contents.bytes.size() != plan.bytes.size())
        return std::nullopt;
    auto changes = LibraryChanges(contents.fru, FruImage::Parse(plan.bytes));
    if (changes && !LibraryWrites(contents, *changes, plan.bytes))
        changes.reset();
    return changes;
}

std::string StepsText(const PLAN& plan) {
    std::string text =
        "  " + Say("written in {}: {}", SayCount(plan.steps.size(), "step"), SayCount(plan.Written(), "byte")) + "\n";
    for (const FruImage::STEP& step : plan.steps)
        text += fmt::format("    {}  {}\n", Say("{} at {:03X}h", SayCount(step.bytes.size(), "byte"), step.offset),
                            Spoken(step.what));
    return text;
}

nlohmann::json JsonSteps(const PLAN& plan) {
    nlohmann::json steps = nlohmann::json::array();
    for (const FruImage::STEP& step : plan.steps)
        steps.push_back({{"offset", step.offset}, {"length", step.bytes.size()}, {"what", Spoken(step.what)}});
    return steps;
}

/// Writes with a progress bar, to the end in spite of signals. A failure tells how far it came.
void Write(const SOURCE& device, const std::function<void(const PROGRESS&)>& work) {
    const CFinish finish;
    CProgressBar bar("writing " + device.label);
    std::size_t written = 0;
    std::size_t all = 0;
    try {
        work([&](std::size_t done, std::size_t total, const std::string& text) {
            written = done;
            all = total;
            bar.Step(done, total, text);
        });
    } catch (CToolError& error) {
        if (error.m_status == EXIT_DEVICE && all != 0)
            error.m_why += fmt::format("; {} of {} were written before", written, Counted(all, "byte"));
        throw;
    }
}

void WritePlan(const CONTENTS& contents, const PLAN& plan, const std::optional<LIBRARY_CHANGES>& library,
               const std::string& backup) {
    WriteVerified(contents, plan.bytes, backup, [&](const PROGRESS& sink) {
        if (library)
            CommitDevice(contents, *library, sink);
        else
            WriteSteps(contents.source, plan.steps, contents.bytes, sink);
    });
}

CONTENTS OpenWhole(const SOURCE& device) {
    CProgressBar bar("reading " + device.label);
    return Open(device, READING::WHOLE, bar.Sink());
}

/// Reads a device back. @throws CToolError EXIT_UNVERIFIED if it does not hold `expected`, with the reason that
/// `before`, its former contents as far as they are known, suggests
void CompareWritten(const SOURCE& device, BYTE_VIEW expected, BYTE_VIEW before) {
    const BYTES after = ReadDevice(device, READING::AREAS, expected.size()).bytes;
    std::optional<std::size_t> first;
    bool dropped = true;
    for (std::size_t offset = 0; offset < expected.size(); ++offset) {
        if (offset < after.size() && after[offset] == expected[offset])
            continue;
        first = first.value_or(offset);
        // A byte that is neither the old nor the new one comes from a third party.
        dropped = dropped && (offset >= after.size() || offset >= before.size() || after[offset] == before[offset]);
    }
    if (!first)
        return;
    throw CToolError(EXIT_UNVERIFIED, device.label,
                     fmt::format("what was written is not there: at {:03X}h it has {}, not {:02X}h", *first,
                                 *first < after.size() ? fmt::format("{:02X}h", after[*first]) : "nothing",
                                 expected[*first]),
                     dropped ? "the device dropped the write: is it write-protected?"
                             : "neither the old nor the new bytes are there: someone else wrote meanwhile");
}

} // namespace

std::string KeepBackup(const SOURCE& source, BYTE_VIEW bytes, const std::string& given) {
    const CHold hold;
    std::string name = ClaimBackupName(source, given);
    try {
        WriteFile(name, bytes);
    } catch (const CToolError&) {
        std::error_code ignored;
        if (std::filesystem::is_regular_file(name, ignored))
            std::filesystem::remove(name, ignored);
        throw;
    }
    Note("the old contents are kept in " + name);
    return name;
}

std::string RestoreHint(const std::string& backup, const CONTENTS& before) {
    return fmt::format("to bring the old contents back: fructl restore {} --to {}{}", Quoted(backup),
                       DeviceArgument(before.source), before.fru.IsSound() ? "" : " --force");
}

void WriteVerified(const CONTENTS& before, BYTE_VIEW expected, const std::string& backup,
                   const std::function<void(const PROGRESS&)>& write) {
    const CFinish untilVerified;
    try {
        Write(before.source, write);
        CompareWritten(before.source, expected, before.bytes);
    } catch (CToolError& error) {
        if (!backup.empty())
            error.m_hint += (error.m_hint.empty() ? "" : "\n  ") + RestoreHint(backup, before);
        throw;
    }
}

void Commit(const SOURCE& device, const PLANNER& planner, const WRITE_OPTIONS& options) {
    std::optional<CDeviceLock> lock;
    if (!options.dryRun)
        lock.emplace(device);
    const CONTENTS contents = OpenWhole(device);
    const PLAN plan = planner(contents);
    const FRU after = FruImage::Parse(plan.bytes);
    NoteDamage(device.label, after);
    nlohmann::json report = {{"device", JsonSource(device)},
                             {"changes", JsonChanges(contents.fru, after)},
                             {"moves", JsonMoves(plan)},
                             {"written", false}};
    const auto finish = [&](const std::string& text) {
        if (Settings().json)
            PrintJson(report);
        else
            PrintText(text);
        std::fflush(stdout);
    };
    if (plan.IsEmpty())
        return finish(Say("Nothing to change: every field has its value already.") + "\n");
    const auto library = ThroughLibrary(contents, plan);
    report["steps"] = library ? nlohmann::json::array() : JsonSteps(plan);
    if (!Settings().json)
        PrintText(fmt::format("{}:\n{}{}", ShownLabel(device), DescribePlan(plan, contents.fru, after),
                              library ? "" : StepsText(plan)));
    if (options.dryRun)
        return finish(Say("Nothing was written.") + "\n");
    Confirm(ShownLabel(device), options, options.mends ? "" : Oddity(contents));
    const std::string backup = options.noBackup ? "" : KeepBackup(device, contents.bytes, options.backup);
    if (!backup.empty())
        report["backup"] = backup;
    const CFinish untilSaid;
    WritePlan(contents, plan, library, backup);
    report["written"] = true;
    finish(Colored(COLOR::GREEN, Say("Written and verified.")) + "\n");
}

void AddCommit(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "commit", "Change fields of a device: difference, backup, write, read back, compare",
                   "  fructl commit --system product.asset-tag=12345\n"
                   "  fructl commit --at 'PSU 1' board.serial-number=AB123 --backup psu1.bin\n"
                   "  fructl commit --system product.custom+='Rack 7' --dry-run\n"
                   "'fructl set --help' shows everything that can be changed.");
    const auto sources = std::make_shared<CSources>(command, "DEVICE AREA.FIELD=VALUE...", "Assignments");
    const auto options = std::make_shared<WRITE_OPTIONS>();
    const auto edits = std::make_shared<EDIT_OPTIONS>();
    AddWriteOptions(command, *options);
    AddEditOptions(command, *edits);
    command.callback([sources, options, edits] {
        const SOURCE device = sources->TakeDevice();
        const CHANGES changes = ParseEdits(sources->Words(), *edits);
        Commit(
            device, [&](const CONTENTS& contents) { return MakePlan(contents, changes, edits->limits); }, *options);
    });
}

} // namespace Fructl
