#include "tools/fructl/commands/commands.h"

#include "tools/fructl/open.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace Fructl {

void AddShow(CLI::App& app) {
    CLI::App& command = NewCommand(app, "show", "Show every area and field of a FRU",
                                   "  fructl show board.fru             a FRU text file or a binary image\n"
                                   "  fructl show                       the BMC's own FRU\n"
                                   "  fructl show --at 'PSU 1' --json   a device that 'fructl scan' names, as JSON\n"
                                   "  fructl show --at type=at24,bus=1,address=0xA0");
    const auto sources = std::make_shared<CSources>(command, "[SOURCE]", "File to show; without one, the system's FRU");
    command.callback([sources] {
        const CONTENTS contents = Open(sources->TakeAll(1, true)[0]);
        if (Settings().json)
            PrintJson(JsonReport(contents));
        else
            PrintText(TextReport(contents));
        contents.RequireSound(false);
    });
}

} // namespace Fructl
