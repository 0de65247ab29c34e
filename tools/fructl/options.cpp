#include "tools/fructl/options.h"

#include "tools/fructl/bytes.h"
#include "tools/fructl/languages.h"
#include "tools/fructl/password.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/way.h"
#include "tools/fructl/words/words.h"

#include "drivers/lan/host.h"
#include "drivers/lan/lan.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string_view>

#include <unistd.h>

namespace Fructl {

namespace {

[[noreturn]] void RefuseValue(const std::string& option, const std::string& value, const std::string& wanted) {
    throw CToolError(EXIT_USAGE, fmt::format("{} {}", option, Printable(value)), "it takes " + wanted,
                     "'fructl --help' shows all options");
}

/// A whole number from `minimum` to `maximum`.
template <typename NUMBER> void AddNumber(CLI::App& app, const char* option, NUMBER& target, unsigned minimum,
                                          unsigned maximum, const char* description, const char* type,
                                          const std::string& wanted) {
    const auto take = [=, &target](const std::string& value) {
        const auto number = ParseNumber(value, maximum);
        if (!number || *number < minimum)
            RefuseValue(option, value, wanted);
        target = static_cast<typename std::remove_reference_t<decltype(target)>>(*number);
    };
    app.add_option_function<std::string>(option, take, description)->type_name(type);
}

/// "kernel, kcs or lan".
std::string Listed(const std::vector<std::string>& words) {
    const std::vector<std::string> first(words.begin(), words.end() - 1);
    return fmt::format("{} or {}", fmt::join(first, ", "), words.back());
}

/// One of `words`.
void AddWord(CLI::App& app, const char* option, std::string& target, const std::vector<std::string>& words,
             const std::string& description, const char* type) {
    const auto take = [=, &target](const std::string& value) {
        if (std::find(words.begin(), words.end(), value) == words.end())
            RefuseValue(option, value, Listed(words));
        target = value;
    };
    app.add_option_function<std::string>(option, take, fmt::format("{}: {}", description, Listed(words)))
        ->type_name(type);
}

void TakeHost(const std::string& value) {
    std::string message;
    const auto host = Frudata_Driver::ParseHost(value, message);
    if (!host)
        throw CToolError(EXIT_USAGE, "--host " + Printable(value), message, "'fructl --help' shows all options");
    Settings().lan.host = host->name;
    Settings().lan.port = host->port;
}

void AddLanOptions(CLI::App& app) {
    LAN_SETTINGS& lan = Settings().lan;
    app.add_option_function<std::string>("--host", TakeHost, "Reach the BMC of another server over LAN")
        ->type_name("NAME[:PORT]");
    app.add_option("--user", lan.user, "User of the LAN session")->type_name("NAME");
    app.add_option("--password-file", lan.passwordFile, "File with the password, else IPMI_PASSWORD or a question")
        ->type_name("FILE");
    AddNumber(app, "--cipher", lan.cipherSuite, 3, 17, "Cipher suite: 17 or 3", "SUITE", "cipher suite 17 or 3");
    app.add_flag("--lan-1.5", lan.isIpmi15, "IPMI 1.5: no encryption");
    AddNumber(app, "--timeout", lan.timeout, 100, 60'000, "Time for an answer over LAN, usually 5000", "MILLISECONDS",
              "a number of milliseconds from 100 to 60000");
    const auto privilege = [&lan](const std::string& value) {
        static const std::vector<std::string> LEVELS = {"user", "operator", "administrator"};
        const auto level = std::find(LEVELS.begin(), LEVELS.end(), value);
        if (level == LEVELS.end())
            RefuseValue("--privilege", value, Listed(LEVELS));
        lan.privilege = static_cast<UINT8>(LAN_PRIVILEGE_USER + (level - LEVELS.begin()));
    };
    app.add_option_function<std::string>("--privilege", privilege,
                                         "Privilege level of the session: user, operator or administrator")
        ->type_name("LEVEL");
}

void TakeLanOptions() {
    SETTINGS& settings = Settings();
    LAN_SETTINGS& lan = settings.lan;
    const bool named = settings.interface == "lan";
    if (named && lan.host.empty())
        throw CToolError(EXIT_USAGE, "--interface lan", "--host NAME is missing");
    if (!settings.simDirectory.empty() && !settings.interface.empty())
        throw CToolError(EXIT_USAGE, "--interface " + settings.interface, "is no way to the simulated BMC of --sim");
    if (lan.host.empty())
        return;
    if (!settings.interface.empty() && !named)
        throw CToolError(EXIT_USAGE, "--host " + lan.host, "is reached over lan, not " + settings.interface);
    if (!settings.simDirectory.empty())
        throw CToolError(EXIT_USAGE, "--host " + lan.host, "and --sim are two BMCs");
    if (lan.cipherSuite != 0 && lan.cipherSuite != 3 && lan.cipherSuite != 17)
        RefuseValue("--cipher", std::to_string(lan.cipherSuite), "cipher suite 17 or 3");
    if (lan.isIpmi15 && lan.cipherSuite != 0)
        throw CToolError(EXIT_USAGE, "--lan-1.5", "has no cipher suites");
    settings.interface = "lan";
    AskPassword(
        lan.passwordFile,
        fmt::format("Password of {} at {}", lan.user.empty() ? "the user" : Printable(lan.user), Printable(lan.host)));
}

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

} // namespace

std::shared_ptr<GLOBAL_OPTIONS> AddGlobalOptions(CLI::App& app) {
    auto options = std::make_shared<GLOBAL_OPTIONS>();
    SETTINGS& settings = Settings();
    settings.language = LanguageOfLocale();
    app.add_option("--sim", settings.simDirectory, "Use the simulated BMC of this directory")->type_name("DIR");
    AddWord(app, "--interface", settings.interface, WayNames(), "Way to the BMC", "NAME");
    AddNumber(app, "--kcs-port", settings.kcsPort, 1, 0xFFFE, "KCS base port, usually 0xCA2", "PORT",
              "a number from 1 to 0xFFFE, such as 0xCA2");
    AddLanOptions(app);
    AddNumber(app, "--platform", settings.platform, 0, 0xFFFF, "Platform code; 3: FRUs behind a mini-BMC", "CODE",
              "a number up to 65535; 3 for FRUs behind a mini-BMC");
    AddNumber(app, "--wait", settings.wait, 0, 86'400, "Wait so long for another writer of the device, usually 60",
              "SECONDS", "a number of seconds, up to 86400");
    AddWord(app, "--lang", settings.language, Languages(), "Language of what is shown", "LANG");
    AddNumber(app, "--debug", settings.debugLevel, 0, 3, "Write DBGLOG.txt, level 1 to 3", "LEVEL",
              "a level from 0 to 3");
    app.add_flag("--json", settings.json, "Print JSON (docs/json.md)");
    app.add_flag("--no-color", options->noColor, "No colours");
    app.add_flag("-q,--quiet", settings.quiet, "No notes and no progress");
    app.add_flag("--force", settings.force, "Insist on what is refused for safety");
    return options;
}

void TakeGlobalOptions(const GLOBAL_OPTIONS& options) {
    const char* terminal = std::getenv("TERM");
    const bool isDumb = terminal && std::string_view(terminal) == "dumb";
    Settings().color = !options.noColor && !IsSet("NO_COLOR") && !isDumb && isatty(STDOUT_FILENO) != 0;
    ChooseWords(Settings().language);
    TakeLanOptions();
}

void CheckArguments(int count, char** arguments) {
    for (int index = 1; index < count; ++index)
        if (!IsUtf8(arguments[index]))
            throw CToolError(EXIT_REFUSED, fmt::format("argument {}", index),
                             fmt::format("\"{}\" is not valid UTF-8", Printable(arguments[index])));
}

} // namespace Fructl
