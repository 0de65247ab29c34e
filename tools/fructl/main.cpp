// fructl: shows, edits, saves and writes the FRU inventory of a server.
#include "tools/fructl/commands/commands.h"
#include "tools/fructl/help.h"
#include "tools/fructl/interrupt.h"
#include "tools/fructl/languages.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace Fructl {

namespace {

constexpr const char* EXAMPLES =
    "Examples:\n"
    "  fructl show board.fru                           every area and field of a file\n"
    "  fructl get board.fru board.serial-number        one bare value, for scripts\n"
    "  fructl set board.fru product.asset-tag=12345    change a file\n"
    "  fructl commit --system product.asset-tag=12345  change the BMC's own FRU\n"
    "  fructl scan --load                              all FRU devices of this server\n"
    "\n"
    "A SOURCE is a FRU text file, a binary FRU image, --system, or --at DEVICE.\n"
    "'fructl COMMAND --help' shows examples of a command, 'fructl fields' the field names.\n"
    "\n"
    "Exit status: 0 done, 1 usage, 2 refused value or file, 3 device error, 4 damaged FRU,\n"
    "5 verification failed, 6 scan with unreadable FRUs.";

void AddGlobalOptions(CLI::App& app, bool& noColor) {
    static const std::map<std::string, _IPMI_INTERFACE_TYPE> INTERFACES = {
        {"kcs", IPMI_INTERFACE_KCS}, {"session", IPMI_INTERFACE_USB}, {"session-large", IPMI_INTERFACE_USB_LARGE}};
    SETTINGS& settings = Settings();
    settings.language = LanguageOfLocale();
    app.add_option("--sim", settings.simDirectory, "Use the simulated BMC of this directory")->type_name("DIR");
    app.add_option("--interface", settings.interface, "Way to the BMC: kcs, session or session-large")
        ->transform(CLI::Transformer(INTERFACES).description(""))
        ->type_name("NAME");
    app.add_option("--kcs-port", settings.kcsPort, "KCS base port, usually 0xCA2")->type_name("PORT");
    app.add_option("--platform", settings.platform, "Platform code; 3: FRUs behind a mini-BMC")->type_name("CODE");
    app.add_option("--lang", settings.language, fmt::format("Language of titles: {}", fmt::join(Languages(), ", ")))
        ->check(CLI::IsMember(Languages()).description(""))
        ->type_name("LANG");
    app.add_option("--debug", settings.debugLevel, "Write DBGLOG.txt, level 1 to 3")
        ->check(CLI::Range(0, 3).description(""))
        ->type_name("LEVEL");
    app.add_flag("--json", settings.json, "Print JSON (docs/json.md)");
    app.add_flag("--no-color", noColor, "No colours");
    app.add_flag("-q,--quiet", settings.quiet, "No notes and no progress");
    app.add_flag("--force", settings.force, "Insist on what is refused for safety");
}

/// Adds the command `name`, or all where it is none: help and errors tell of all.
void AddCommands(CLI::App& app, std::string_view name) {
    static constexpr std::pair<std::string_view, void (*)(CLI::App&)> COMMANDS[] = {
        {"show", AddShow},     {"get", AddGet},         {"set", AddSet},     {"fields", AddFields}, {"save", AddSave},
        {"commit", AddCommit}, {"new", AddNew}, {"repair", AddRepair}, {"restore", AddRestore}, {"apply", AddApply}, {"diff", AddDiff},     {"map", AddMap},
        {"dump", AddDump},     {"load", AddLoad},       {"scan", AddScan},   {"probe", AddProbe},   {"info", AddInfo}};
    const bool isKnown =
        std::any_of(std::begin(COMMANDS), std::end(COMMANDS), [&](const auto& row) { return row.first == name; });
    for (const auto& [known, add] : COMMANDS)
        if (!isKnown || known == name)
            add(app);
}

int Report(const CToolError& error) {
    std::fflush(stdout);
    const std::string message = fmt::format("{}: {}", error.m_what, error.m_why);
    fmt::print(stderr, "fructl: {}\n", message);
    if (!error.m_hint.empty())
        fmt::print(stderr, "  {}\n", error.m_hint);
    return error.m_status;
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
    bool noColor = false;
    AddGlobalOptions(app, noColor);
    AddCommands(app, argc > 1 ? argv[1] : "");
    app.parse_complete_callback(
        [&] { Settings().color = !noColor && !std::getenv("NO_COLOR") && isatty(STDOUT_FILENO) != 0; });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) // --help, --version
            return app.exit(error);
        const bool unknown = argc > 1 && argv[1][0] != '-' && !HasCommand(app, argv[1]);
        return Report({EXIT_USAGE, "command line",
                       unknown ? fmt::format("there is no command '{}'", argv[1]) : std::string(error.what()),
                       "'fructl --help' shows how it is used"});
    } catch (const CToolError& error) {
        return Report(error);
    } catch (const CChildDied& error) {
        return Report({EXIT_DAMAGED, "session", error.m_output});
    } catch (const std::exception& error) {
        return Report({EXIT_DEVICE, "internal error", error.what()});
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
