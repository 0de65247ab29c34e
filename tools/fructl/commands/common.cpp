#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicescan.h"
#include "tools/fructl/help.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

CSources::CSources(CLI::App& command, const std::string& positional, const std::string& description)
    : m_command(command) {
    command.add_flag("--system", m_system, "The BMC's own FRU");
    command.add_option("--at", m_at, "A FRU device: a name from 'fructl scan', or type=...,address=...")
        ->allow_extra_args(false)
        ->type_name("DEVICE");
    m_positional = command.add_option("arguments", m_words, description);
    SetUsage(command, positional);
}

std::vector<NAMED_SOURCE> CSources::TakeNames(std::size_t count, bool optional) {
    std::vector<NAMED_SOURCE> devices;
    if (m_system)
        devices.push_back({"system", DeviceSource});
    for (const std::string& at : m_at)
        devices.push_back({at, DeviceSource});
    std::vector<NAMED_SOURCE> files;
    while (devices.size() + files.size() < count && !m_words.empty()) {
        files.push_back({m_words.front(), FileSource});
        m_words.erase(m_words.begin());
    }
    if (optional && devices.empty() && files.empty())
        devices.push_back({"system", DeviceSource});
    if (devices.size() + files.size() != count)
        throw CToolError(EXIT_USAGE, m_command.get_name(),
                         devices.size() > count ? "too many sources" : "a source is missing",
                         "a source is a file, --system, or --at DEVICE");
    const auto& order = m_command.parse_order();
    const bool filesFirst = !order.empty() && order.front() == m_positional;
    std::vector<NAMED_SOURCE>& first = filesFirst ? files : devices;
    std::vector<NAMED_SOURCE>& second = filesFirst ? devices : files;
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::vector<SOURCE> CSources::Take(std::size_t count, bool optional) {
    std::vector<SOURCE> sources;
    for (const NAMED_SOURCE& named : TakeNames(count, optional))
        sources.push_back(named.Get());
    return sources;
}

std::vector<SOURCE> CSources::TakeAll(std::size_t count, bool optional) {
    std::vector<SOURCE> sources = Take(count, optional);
    if (!m_words.empty())
        throw CToolError(EXIT_USAGE, m_words.front(), "one argument too many");
    return sources;
}

std::vector<NAMED_SOURCE> CSources::TakeWhile(const std::function<bool(const std::string&)>& isOther) {
    const std::size_t devices = m_at.size() + (m_system ? 1 : 0);
    std::size_t files = 0;
    while (files < m_words.size() && ((files == 0 && devices == 0) || !isOther(m_words[files])))
        ++files;
    return TakeNames(std::max<std::size_t>(devices + files, 1), false);
}

SOURCE CSources::TakeDevice() {
    if (!m_system && m_at.empty())
        throw CToolError(EXIT_USAGE, m_command.get_name(), "a device is missing",
                         "a device is --system or --at DEVICE");
    return TakeOne();
}

void RequireAreas(const CONTENTS& contents, const std::vector<AREA_ID>& areas) {
    std::string problems;
    for (const AREA_ID area : areas)
        if (const std::string text = ProblemText(contents.fru, area); problems.find(text) == std::string::npos)
            problems += (problems.empty() ? "" : "; ") + text;
    if (!problems.empty())
        throw CToolError(EXIT_DAMAGED, contents.source.label, problems);
    NoteDamage(contents.source.label, contents.fru);
}

void SetUsage(CLI::App& command, const std::string& arguments) {
    command.formatter(std::make_shared<CHelpFormatter>(
        fmt::format("fructl {} {}[OPTIONS]", command.get_name(), arguments.empty() ? arguments : arguments + " ")));
}

CLI::App& NewCommand(CLI::App& app, const std::string& name, const std::string& description,
                     const std::string& examples) {
    CLI::App& command = *app.add_subcommand(name, description);
    command.footer("Examples:\n" + examples);
    command.fallthrough();
    SetUsage(command, "");
    return command;
}

} // namespace Fructl
