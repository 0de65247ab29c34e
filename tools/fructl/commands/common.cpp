#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicescan.h"
#include "tools/fructl/help.h"

#include <fmt/format.h>

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

std::vector<SOURCE> CSources::Take(std::size_t count, bool optional) {
    std::vector<SOURCE> devices;
    if (m_system)
        devices.push_back(DeviceSource("system"));
    for (const std::string& at : m_at)
        devices.push_back(DeviceSource(at));
    std::vector<SOURCE> files;
    while (devices.size() + files.size() < count && !m_words.empty()) {
        files.push_back(FileSource(m_words.front()));
        m_words.erase(m_words.begin());
    }
    if (optional && devices.empty() && files.empty())
        devices.push_back(DeviceSource("system"));
    if (devices.size() + files.size() != count)
        throw CToolError(EXIT_USAGE, m_command.get_name(),
                         devices.size() > count ? "too many sources" : "a source is missing",
                         "a source is a file, --system, or --at DEVICE");
    const auto& order = m_command.parse_order();
    const bool filesFirst = !order.empty() && order.front() == m_positional;
    std::vector<SOURCE>& first = filesFirst ? files : devices;
    std::vector<SOURCE>& second = filesFirst ? devices : files;
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::vector<SOURCE> CSources::TakeAll(std::size_t count, bool optional) {
    std::vector<SOURCE> sources = Take(count, optional);
    if (!m_words.empty())
        throw CToolError(EXIT_USAGE, m_words.front(), "one argument too many");
    return sources;
}

SOURCE CSources::TakeDevice() {
    if (!m_system && m_at.empty())
        throw CToolError(EXIT_USAGE, m_command.get_name(), "a device is missing",
                         "a device is --system or --at DEVICE");
    return TakeOne();
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
