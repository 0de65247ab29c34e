#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicesession.h"
#include "tools/fructl/files.h"
#include "tools/fructl/image.h"
#include "tools/fructl/imagesession.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/lock.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <filesystem>
#include <optional>

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
    return fmt::format("fru-backup-{}-{}.bin", stem, stamp);
}

/// One that is not taken: an older backup must survive.
std::string BackupName(const SOURCE& device, const std::string& given) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    std::string stem = given;
    if (given.empty() || fs::is_directory(given, ignored))
        stem = (fs::path(given) / BackupStem(device)).string();
    std::string name = stem;
    for (int number = 2; fs::is_regular_file(name, ignored); ++number)
        name = fmt::format("{}.{}", stem, number);
    return name;
}

/// A word for the shell.
std::string Quoted(std::string_view word) {
    std::string text = "'";
    for (const char character : word)
        text += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return text + "'";
}

/// By its address, which names one device whatever the repository calls it and its neighbours.
std::string DeviceArgument(const SOURCE& device) {
    const std::string address = DeviceText(device);
    return address == AddressText({}) ? "system" : device.isEeprom ? Quoted(address) : address;
}

nlohmann::json JsonChanges(const EDITS& edits) {
    nlohmann::json changes = nlohmann::json::array();
    for (const ASSIGNMENT& one : edits.fields) {
        const FIELD after{one.before.kind, static_cast<UINT8>(FIELD_8_BIT | one.data.size()), one.data};
        changes.push_back({{"name", one.name.text},
                           {"before", JsonField(one.name.text, one.before)},
                           {"after", JsonField(one.name.text, after)}});
    }
    return changes;
}

/// Writes with a progress bar, and to its end whatever the terminal says. A failure says how far it came.
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

void WriteChanges(const CONTENTS& contents, const EDITS& edits, const BYTES& expected) {
    const std::string problem = PackingProblem(contents.fru);
    if (problem.empty() && !contents.source.isEeprom)
        return Write(contents.source, [&](const PROGRESS& sink) { CommitDevice(contents, edits, sink); });
    // Written through the table, the areas would land on each other.
    if (!problem.empty())
        Note(problem + ": only the bytes that change are written, each at its place");
    WriteImage(contents.source, expected, contents.bytes);
}

/// Writes, reads back and compares. A failure says how the old contents come back from `backup`, if there is one.
void WriteVerified(const CONTENTS& contents, const EDITS& edits, const BYTES& expected, const std::string& backup) {
    try {
        WriteChanges(contents, edits, expected);
        CompareWritten(contents.source, expected, contents.bytes);
    } catch (CToolError& error) {
        if (!backup.empty())
            error.m_hint +=
                fmt::format("{}to bring the old contents back: fructl restore {} --to {}",
                            error.m_hint.empty() ? "" : "\n  ", Quoted(backup), DeviceArgument(contents.source));
        throw;
    }
}

CONTENTS OpenWhole(const SOURCE& device) {
    CProgressBar bar("reading " + device.label);
    CONTENTS contents{device, ReadDevice(device, WHOLE, bar.Sink()), {}};
    contents.fru = ParseImage(contents.bytes);
    if (!contents.fru.IsDamaged())
        LoadWithLibrary(contents);
    contents.RequireSound();
    return contents;
}

} // namespace

void AddWriteOptions(CLI::App& command, WRITE_OPTIONS& options) {
    command.add_option("--backup", options.backup, "Name of the backup image, or a directory for it")
        ->type_name("FILE");
    command.add_flag("--no-backup", options.noBackup, "Keep no backup");
    command.add_flag("--dry-run", options.dryRun, "Show the difference, write nothing");
}

void WriteImage(const SOURCE& device, BYTE_VIEW bytes, BYTE_VIEW known) {
    Write(device, [&](const PROGRESS& sink) { WriteDevice(device, bytes, known, sink); });
}

void CompareWritten(const SOURCE& device, BYTE_VIEW expected, BYTE_VIEW before) {
    const BYTES after = ReadDevice(device, expected.size());
    std::optional<std::size_t> first;
    bool dropped = true;
    for (std::size_t offset = 0; offset < expected.size(); ++offset) {
        if (offset < after.size() && after[offset] == expected[offset])
            continue;
        first = first.value_or(offset);
        // A byte that is neither the old nor the new one is a third party's.
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

void Commit(const SOURCE& device, const std::function<EDITS(const FRU&)>& makeEdits, const WRITE_OPTIONS& options) {
    std::optional<CDeviceLock> lock;
    if (!options.dryRun)
        lock.emplace(device);
    const CONTENTS contents = OpenWhole(device);
    const EDITS edits = makeEdits(contents.fru);
    nlohmann::json report = {{"device", JsonSource(device)}, {"changes", JsonChanges(edits)}, {"written", false}};
    const auto finish = [&](const std::string& text) {
        if (Settings().json)
            PrintJson(report);
        else
            PrintText(text);
    };
    if (edits.IsEmpty())
        return finish("Nothing to change: every field has its value already.\n");
    const BYTES expected = EditImage(contents.bytes, contents.fru, edits, device.label);
    if (expected.size() > contents.bytes.size() && device.address.type == FRU_TYPE_IMBDEVICE)
        throw CToolError(
            EXIT_REFUSED, device.label,
            fmt::format("it has {}, {} are needed", Counted(contents.bytes.size(), "byte"), expected.size()));
    if (!Settings().json)
        PrintText(fmt::format("{}:\n{}", device.label, DescribeEdits(edits)));
    if (options.dryRun)
        return finish("Nothing was written.\n");
    std::fflush(stdout);
    const std::string backup = options.noBackup ? std::string() : BackupName(device, options.backup);
    if (!backup.empty()) {
        WriteFile(backup, contents.bytes);
        report["backup"] = backup;
        Note("the old contents are kept in " + backup);
    }
    const CFinish untilSaid;
    WriteVerified(contents, edits, expected, backup);
    report["written"] = true;
    finish(Colored(COLOR::GREEN, "Written and verified.") + "\n");
}

void AddCommit(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "commit", "Change fields of a device: difference, backup, write, read back, compare",
                   "  fructl commit --system product.asset-tag=12345\n"
                   "  fructl commit --at 'PSU 1' board.serial-number=AB123 --backup psu1.bin\n"
                   "  fructl commit --system chassis.type=23 --dry-run");
    const auto sources = std::make_shared<CSources>(command, "DEVICE AREA.FIELD=VALUE...", "Assignments");
    const auto options = std::make_shared<WRITE_OPTIONS>();
    AddWriteOptions(command, *options);
    command.callback([sources, options] {
        const SOURCE device = sources->TakeDevice();
        if (sources->Words().empty())
            throw CToolError(EXIT_USAGE, "commit", "an AREA.FIELD=VALUE is missing",
                             "for example: board.serial-number=AB123");
        Commit(
            device, [&](const FRU& fru) { return ParseAssignments(sources->Words(), fru); }, *options);
    });
}

} // namespace Fructl
