#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicescan.h"
#include "tools/fructl/devicesession.h"
#include "tools/fructl/files.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/lock.h"
#include "tools/fructl/open.h"
#include "tools/fructl/textfile.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

/// What a device holds now, as far as it can be read: what cannot be read may still be repaired.
BYTES PresentBytes(const SOURCE& device, std::size_t count) {
    try {
        return ReadDevice(device, count);
    } catch (const CToolError& error) {
        Note(fmt::format("{}: {}", error.m_what, error.m_why));
        return {};
    }
}

void Restore(const std::string& backup, const SOURCE& device) {
    const BYTES image = ReadFile(backup, IMAGE_LIMIT);
    const FRU fru = ParseImage(image);
    if (!LooksLikeImage(image))
        throw CToolError(EXIT_REFUSED, backup, "is no binary image",
                         "'fructl apply' copies the fields of a text file to a device");
    if (fru.IsDamaged() && !Settings().force)
        throw CToolError(EXIT_REFUSED, backup, fru.ProblemText(), "--force writes it nevertheless");
    const CDeviceLock lock(device);
    const BYTES before = PresentBytes(device, image.size());
    const CFinish untilVerified;
    WriteImage(device, image, {});
    CompareWritten(device, image, before);
    if (Settings().json)
        PrintJson({{"device", JsonSource(device)}, {"written", true}, {"size", image.size()}});
    else
        PrintText(fmt::format("{} written and verified.\n", Counted(image.size(), "byte")));
}

} // namespace

void AddRestore(CLI::App& app) {
    CLI::App& command = NewCommand(app, "restore", "Write a backup image back to a device, byte for byte",
                                   "  fructl restore backup.bin --to system\n"
                                   "  fructl restore backup.bin --to type=imb,id=1\n"
                                   "It writes a device too whose present contents are damaged.");
    SetUsage(command, "BACKUP --to DEVICE");
    struct OPTIONS {
        std::string backup;
        std::string to;
    };
    const auto options = std::make_shared<OPTIONS>();
    command.add_option("backup", options->backup, "The image")->required();
    command.add_option("--to", options->to, "system, a name, or an address")->required()->type_name("DEVICE");
    command.callback([options] { Restore(options->backup, DeviceSource(options->to)); });
}

void AddApply(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "apply", "Copy the field values of a file to a device, then as commit",
                   "  fructl apply board.fru --to system\n"
                   "  fructl apply board.fru --to 'PSU 1' --dry-run\n"
                   "Copied are the fields of the chassis, board and product areas. With --force, fields\n"
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
            DeviceSource(*to), [&](const FRU& fru) { return CopyFields(values.fru, fru); }, *options);
    });
}

} // namespace Fructl
