#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicesession.h"
#include "tools/fructl/files.h"
#include "tools/fructl/image.h"
#include "tools/fructl/imagesession.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <csignal>
#include <ctime>
#include <filesystem>

namespace Fructl {

namespace {

/// A name that is not taken: an older backup must survive.
std::string BackupName(const SOURCE& device, const std::string& given) {
    std::string stem = given;
    if (given.empty()) {
        stem = device.label;
        std::replace_if(
            stem.begin(), stem.end(), [](unsigned char c) { return !std::isalnum(c); }, '-');
        const std::time_t now = std::time(nullptr);
        char stamp[32] = "";
        std::strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%SZ", std::gmtime(&now));
        stem = fmt::format("fru-backup-{}-{}.bin", stem, stamp);
    }
    std::string name = stem;
    for (int number = 2; std::filesystem::exists(name); ++number)
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
    const std::string address = AddressText(device.address);
    return address == AddressText({}) ? "system" : address;
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

/// While a device is written, neither the terminal nor a service manager ends the work half-way.
class CUninterrupted {
  public:
    CUninterrupted() {
        for (std::size_t index = 0; index < m_before.size(); ++index)
            m_before[index] = std::signal(SIGNALS[index], SIG_IGN);
    }
    CUninterrupted(const CUninterrupted&) = delete;
    CUninterrupted& operator=(const CUninterrupted&) = delete;
    ~CUninterrupted() {
        for (std::size_t index = 0; index < m_before.size(); ++index)
            std::signal(SIGNALS[index], m_before[index]);
    }

  private:
    static constexpr std::array<int, 3> SIGNALS = {SIGINT, SIGTERM, SIGHUP};
    std::array<void (*)(int), SIGNALS.size()> m_before = {};
};

void WriteChanges(const CONTENTS& contents, const EDITS& edits, const BYTES& expected) {
    const std::string problem = PackingProblem(contents.fru);
    if (problem.empty()) {
        const CUninterrupted uninterrupted;
        CProgressBar bar("writing " + contents.source.label);
        return CommitDevice(contents, edits, bar.Sink());
    }
    // Written through the table, the areas would land on each other.
    Note(problem + ": only the bytes that change are written, each at its place");
    WriteImage(contents.source, expected, contents.bytes);
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
    command.add_option("--backup", options.backup, "Name of the backup image")->type_name("FILE");
    command.add_flag("--no-backup", options.noBackup, "Keep no backup");
    command.add_flag("--dry-run", options.dryRun, "Show the difference, write nothing");
}

void WriteImage(const SOURCE& device, BYTE_VIEW bytes, BYTE_VIEW known) {
    const CUninterrupted uninterrupted;
    CProgressBar bar("writing " + device.label);
    WriteDevice(device, bytes, known, bar.Sink());
}

void CompareWritten(const SOURCE& device, BYTE_VIEW expected) {
    const BYTES after = ReadDevice(device, expected.size());
    for (std::size_t offset = 0; offset < expected.size(); ++offset)
        if (offset >= after.size() || after[offset] != expected[offset])
            throw CToolError(EXIT_UNVERIFIED, device.label,
                             fmt::format("what was written is not there: at {:03X}h it has {}, not {:02X}h", offset,
                                         offset < after.size() ? fmt::format("{:02X}h", after[offset]) : "nothing",
                                         expected[offset]),
                             "the device does not keep what is written: is it write-protected?");
}

void Commit(const SOURCE& device, const std::function<EDITS(const FRU&)>& makeEdits, const WRITE_OPTIONS& options) {
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
        throw CToolError(EXIT_REFUSED, device.label,
                         fmt::format("it has {} bytes, {} are needed", contents.bytes.size(), expected.size()));
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
    try {
        WriteChanges(contents, edits, expected);
        CompareWritten(device, expected);
    } catch (CToolError& error) {
        if (!backup.empty())
            error.m_hint = fmt::format("to bring the old contents back: fructl restore {} --to {}", Quoted(backup),
                                       DeviceArgument(device));
        throw;
    }
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
