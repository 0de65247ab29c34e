#include "tools/fructl/savefru.h"

#include "tools/fructl/commands/commands.h"

#include "tools/fructl/devicescan.h"
#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

namespace Fructl {

namespace {

void Save(const SOURCE& source, const TARGET& target) {
    const CONTENTS contents = Open(source, target.binary ? READING::RESCUE : READING::WHOLE);
    SaveFru(contents, contents.fru, target);
    NoteDamage(source.label, contents.fru);
    Note("saved " + target.path);
    if (!contents.failure.empty())
        throw CToolError(
            EXIT_DEVICE, source.label, contents.failure,
            fmt::format("{} holds the {} in front of it", target.path, Counted(contents.bytes.size(), "byte")));
}

/// A file name from the name of a device, without characters that a shell or a path interprets.
std::string SafeName(const SOURCE& device) {
    std::string name = device.label;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return c >= 0x80 || (!std::isalnum(c) && c != '.'); }, '-');
    if (name.empty() || name.front() == '.' || name.front() == '-')
        name.insert(0, "fru");
    return name;
}

/// Two devices of one name get two files, on file systems without capitals too.
std::string UniqueName(const std::string& name, std::set<std::string>& taken) {
    std::string unique = name;
    const auto folded = [](std::string text) {
        std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
        return text;
    };
    for (int number = 2; !taken.insert(folded(unique)).second; ++number)
        unique = fmt::format("{}-{}", name, number);
    return unique;
}

void SaveAll(const std::string& directory, bool binary) {
    std::error_code failed;
    std::filesystem::create_directories(directory, failed);
    if (!std::filesystem::is_directory(directory, failed))
        throw CToolError(EXIT_REFUSED, directory, "is no directory, and cannot become one");
    const std::vector<SOURCE> devices = ScanDevices();
    std::set<std::string> taken;
    std::size_t saved = 0;
    for (const SOURCE& device : devices) {
        const std::string name = UniqueName(SafeName(device), taken) + (binary ? ".bin" : ".fru");
        try {
            Save(device, {(std::filesystem::path(directory) / name).string(), {}, binary});
            ++saved;
        } catch (const CToolError& error) {
            Complain(error);
        }
    }
    if (saved != devices.size())
        throw CToolError(EXIT_PARTIAL, directory,
                         fmt::format("{} of {} FRUs could not be saved", devices.size() - saved, devices.size()),
                         binary ? "" : "--binary saves what is damaged or blank, too");
}

} // namespace

void AddSave(CLI::App& app) {
    CLI::App& command = NewCommand(app, "save", "Save a FRU as a text file or a binary image",
                                   "  fructl save --system -o board.fru\n"
                                   "  fructl save board.fru --binary -o board.bin   an image that other tools read\n"
                                   "  fructl save board.bin -o board.fru            and back\n"
                                   "  fructl save --all frus                        every FRU that a scan finds\n"
                                   "With --binary, a device or file is copied byte for byte, damaged or blank too.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE -o FILE | --all DIR", "File to save");
    const auto target = std::make_shared<TARGET>();
    const auto all = std::make_shared<std::string>();
    command.add_option("-o,--output", target->path, "File to write")->type_name("FILE");
    command.add_option("--all", *all, "Save every FRU that a scan finds, into this directory")->type_name("DIR");
    command.add_flag("--binary", target->binary, "Write a binary image of the whole FRU");
    command.add_option("--title", target->title, "Title to write into a text file")->type_name("TEXT");
    command.callback([sources, target, all] {
        if (target->binary && !target->title.empty())
            throw CToolError(EXIT_USAGE, "--title", "is for text files: a binary image has none");
        if (all->empty() && target->path.empty())
            throw CToolError(EXIT_USAGE, "save", "-o FILE is missing", "or --all DIR, for every FRU that a scan finds");
        if (all->empty())
            return Save(sources->TakeAll(1)[0], *target);
        if (!sources->IsEmpty() || !target->path.empty() || !target->title.empty())
            throw CToolError(EXIT_USAGE, "--all", "takes no source, no -o and no --title");
        SaveAll(*all, target->binary);
    });
}

} // namespace Fructl
