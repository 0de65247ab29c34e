// fructl: shows, edits, saves and writes the FRU inventory of a server.
#include "tools/fructl/commands/commands.h"
#include "tools/fructl/help.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/options.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

namespace Fructl {

namespace {

constexpr const char* EXAMPLES =
    "Examples:\n"
    "  fructl show board.fru                           every area and field of a file\n"
    "  fructl get board.fru board.serial-number        one bare value, for scripts\n"
    "  fructl set board.fru product.asset-tag=12345    change a file\n"
    "  fructl edit board.fru                           the same in your editor\n"
    "  fructl commit --system product.asset-tag=12345  change the BMC's own FRU\n"
    "  fructl scan --load                              all FRU devices of this server\n"
    "\n"
    "A SOURCE is a FRU text file, a binary FRU image, --system, or --at DEVICE.\n"
    "'fructl COMMAND --help' shows examples of a command, 'fructl fields' the field names.\n"
    "\n"
    "Exit status: 0 done, 1 usage, 2 refused value or file, 3 device error, 4 damaged FRU,\n"
    "5 verification failed, 6 scan with unreadable FRUs.";

/// Adds the command `name`, or all if there is none of the name: help and errors list them.
void AddCommands(CLI::App& app, std::string_view name) {
    static constexpr std::pair<std::string_view, void (*)(CLI::App&)> COMMANDS[] = {
        {"show", AddShow},   {"get", AddGet},       {"set", AddSet},  {"edit", AddEdit},     {"fields", AddFields},
        {"save", AddSave},   {"commit", AddCommit}, {"new", AddNew},  {"repair", AddRepair}, {"restore", AddRestore},
        {"apply", AddApply}, {"diff", AddDiff},     {"map", AddMap},  {"dump", AddDump},     {"load", AddLoad},
        {"scan", AddScan},   {"probe", AddProbe},   {"info", AddInfo}};
    const bool isKnown =
        std::any_of(std::begin(COMMANDS), std::end(COMMANDS), [&](const auto& row) { return row.first == name; });
    for (const auto& [known, add] : COMMANDS)
        if (!isKnown || known == name)
            add(app);
}

bool HasCommand(const CLI::App& app, const std::string& name) {
    const auto commands = app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
    return !commands.empty();
}

int Run(int argc, char** argv) {
    CLI::App app("Shows, edits, saves and writes FRU (field replaceable unit) inventory.");
    app.formatter(std::make_shared<CHelpFormatter>("fructl COMMAND [ARGUMENTS] [OPTIONS]"));
    app.footer(EXAMPLES);
    app.set_version_flag("--version", "fructl " FRUCTL_VERSION);
    app.require_subcommand(1);
    const auto options = AddGlobalOptions(app);
    AddCommands(app, argc > 1 ? argv[1] : "");
    app.parse_complete_callback([&] { TakeGlobalOptions(*options); });
    try {
        CheckArguments(argc, argv);
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) // --help, --version
            return app.exit(error);
        const bool unknown = argc > 1 && argv[1][0] != '-' && !HasCommand(app, argv[1]);
        return Complain({EXIT_USAGE, "command line",
                         unknown ? fmt::format("there is no command '{}'", argv[1]) : std::string(error.what()),
                         "'fructl --help' shows how it is used"});
    } catch (const CToolError& error) {
        return Complain(error);
    } catch (const CChildDied& error) {
        return Complain({EXIT_DAMAGED, "session", error.m_output});
    } catch (const std::bad_alloc&) {
        return Complain({EXIT_DEVICE, "memory", "there is not enough of it"});
    } catch (const std::exception& error) {
        return Complain({EXIT_DEVICE, "internal error", error.what()});
    }
    return EXIT_DONE;
}

} // namespace

} // namespace Fructl

int main(int argc, char** argv) {
    int status = Fructl::EXIT_DEVICE;
    try {
        Fructl::CatchInterrupts();
        status = Fructl::Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fructl: %s\n", error.what());
    }
    if (std::fflush(stdout) != 0) {
        std::perror("fructl: standard output");
        return Fructl::EXIT_REFUSED;
    }
    return status;
}
