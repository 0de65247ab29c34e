#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicescan.h"
#include "tools/fructl/difference.h"
#include "tools/fructl/fieldname.h"
#include "tools/fructl/filekind.h"
#include "tools/fructl/files.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/lock.h"
#include "tools/fructl/report.h"
#include "tools/fructl/words/words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <optional>

namespace Fructl {

namespace {

/// The contents of a device, as far as it can be read: a restore may repair the rest.
CONTENTS PresentContents(const SOURCE& device) {
    try {
        CONTENTS contents = Open(device, READING::RESCUE);
        if (!contents.failure.empty())
            Note(fmt::format("{}: {}", device.label, contents.failure));
        return contents;
    } catch (const CToolError& error) {
        Note(fmt::format("{}: {}", error.m_what, error.m_why));
        return {device, {}, {}, {}, false, error.m_why};
    }
}

/// Whether all fields that identify a product differ, and there are enough of them.
bool IsOtherProduct(const FRU& present, const FRU& image) {
    constexpr const char* IDENTITY[] = {"product.manufacturer", "product.name",       "product.part-number",
                                        "board.manufacturer",   "board.product-name", "board.part-number"};
    constexpr int ENOUGH = 2;
    int comparable = 0;
    for (const char* name : IDENTITY) {
        const FIELD* left = present.Find(NamedField(name));
        const FIELD* right = image.Find(NamedField(name));
        if (!left || !right || left->text.empty() || right->text.empty())
            continue;
        if (left->text == right->text)
            return false;
        ++comparable;
    }
    return comparable >= ENOUGH;
}

void CheckRestore(const std::string& backup, const FRU& image, const CONTENTS& present) {
    if (!image.IsSound() && !Settings().force)
        throw CToolError(EXIT_REFUSED, backup, ProblemText(image), "--force writes it nevertheless");
    const bool isKnown = present.sizeKnown && present.failure.empty();
    if (isKnown && image.bytes.size() > present.bytes.size())
        throw CToolError(
            EXIT_REFUSED, present.source.label,
            fmt::format("the image has {}, the device {}", Counted(image.bytes.size(), "byte"), present.bytes.size()));
    // The remains of an interrupted write tell nothing about the product.
    if (present.fru.IsSound() && IsOtherProduct(present.fru, image) && !Settings().force)
        throw CToolError(EXIT_REFUSED, backup, "it belongs to another product than the one that is there",
                         "--force writes it nevertheless");
}

/// The products of both, field by field.
std::string DifferenceText(const CONTENTS& present, const std::string& backup, const FRU& image) {
    const auto product = [](const FRU& fru) {
        const std::string text = Printable(ProductText(fru));
        return text.empty() ? Say("does not tell what it is") : Say("says it is {}", text);
    };
    std::vector<std::vector<std::string>> rows;
    const auto side = [](const std::optional<ENTRY>& entry) {
        return entry ? "\"" + Printable(entry->Shown()) + "\"" : Say("(not there)");
    };
    for (const DIFFERENCE& one : Compare(present.fru, image))
        rows.push_back({one.Name(), side(one.left) + " -> " + side(one.right)});
    return fmt::format("{} {}\n{} {}\n{}", ShownLabel(present.source), product(present.fru), backup, product(image),
                       rows.empty() ? "  " + Say("every field has its value already") + "\n" : Table(rows));
}

FRU ReadBackup(const std::string& backup) {
    const BYTES bytes = ReadFile(backup, IMAGE_LIMIT);
    if (!LooksLikeImage(bytes))
        throw CToolError(EXIT_REFUSED, backup, "is no binary image",
                         "'fructl apply' copies the fields of a text file to a device");
    return FruImage::Parse(bytes);
}

/// Writes the image over the contents. @return their backup; empty: none
std::string WriteOver(const CONTENTS& present, const BYTES& image, const WRITE_OPTIONS& options) {
    const bool isKept = !options.noBackup && !present.bytes.empty();
    std::string backup = isKept ? KeepBackup(present.source, present.bytes, options.backup) : "";
    WriteVerified(present, image, backup, [&](const PROGRESS& sink) { WriteDevice(present.source, image, {}, sink); });
    return backup;
}

void Print(const nlohmann::json& report, const std::string& text) {
    if (Settings().json)
        PrintJson(report);
    else
        PrintText(text);
    std::fflush(stdout);
}

void Restore(const std::string& backup, const SOURCE& device, const WRITE_OPTIONS& options) {
    const FRU image = ReadBackup(backup);
    std::optional<CDeviceLock> lock;
    if (!options.dryRun)
        lock.emplace(device);
    const CONTENTS present = PresentContents(device);
    nlohmann::json report = {{"device", JsonSource(device)},
                             {"changes", JsonChanges(present.fru, image)},
                             {"written", false},
                             {"size", image.bytes.size()}};
    if (!Settings().json)
        PrintText(DifferenceText(present, backup, image));
    if (options.dryRun)
        Print(report, Say("Nothing was written.") + "\n");
    CheckRestore(backup, image, present);
    if (options.dryRun)
        return;
    Confirm(ShownLabel(device), options, Oddity(present));
    const CFinish untilSaid;
    if (const std::string kept = WriteOver(present, image.bytes, options); !kept.empty())
        report["backup"] = kept;
    report["written"] = true;
    Print(report, Say("{} written and verified.", SayCount(image.bytes.size(), "byte")) + "\n");
}

} // namespace

void AddRestore(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "restore", "Write a backup image back to a device, byte for byte",
                   "  fructl restore backup.bin --to system\n"
                   "  fructl restore backup.bin --to type=imb,id=1\n"
                   "  fructl restore backup.bin --to 'PSU 1' --dry-run    what would become of it\n"
                   "The difference comes first, then a question; the old contents are kept. An image\n"
                   "that is damaged, or of another product, is refused without --force. Without a\n"
                   "terminal, --yes is needed where the device is blank, unreadable or without a sound header.");
    SetUsage(command, "BACKUP --to DEVICE");
    struct OPTIONS {
        std::string backup;
        std::string to;
        WRITE_OPTIONS write;
    };
    const auto options = std::make_shared<OPTIONS>();
    command.add_option("backup", options->backup, "The image")->required();
    command.add_option("--to", options->to, "system, a name, or an address")->required()->type_name("DEVICE");
    AddWriteOptions(command, options->write);
    command.callback([options] { Restore(options->backup, DeviceSource(options->to), options->write); });
}

void AddApply(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "apply", "Copy the field values of a file to a device, then as commit",
                   "  fructl apply board.fru --to system\n"
                   "  fructl apply board.fru --to 'PSU 1' --dry-run\n"
                   "Copied are the fields of the chassis, board and product areas. With --force, areas\n"
                   "that the device does not have are left out.");
    const auto sources = std::make_shared<CSources>(command, "FILE --to DEVICE", "File with the values");
    const auto options = std::make_shared<WRITE_OPTIONS>();
    const auto to = std::make_shared<std::string>();
    command.add_option("--to", *to, "system, a name, or an address")->required()->type_name("DEVICE");
    AddWriteOptions(command, *options);
    command.callback([sources, options, to] {
        const CONTENTS values = Open(sources->TakeAll(1)[0]);
        values.RequireSound();
        Commit(
            DeviceSource(*to),
            [&](const CONTENTS& contents) {
                return MakePlan(contents, {CopyFields(values.fru, contents.fru), {}}, {});
            },
            *options);
    });
}

} // namespace Fructl
