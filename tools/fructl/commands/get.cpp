#include "tools/fructl/commands/commands.h"

#include "tools/fructl/compare.h"
#include "tools/fructl/fieldname.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <fnmatch.h>

namespace Fructl {

namespace {

struct GET_OPTIONS {
    bool raw = false;
    bool withNames = false;
};

bool IsPattern(const std::string& word) {
    return word.find_first_of("*?[") != std::string::npos;
}

/// Whether the word names fields. One that begins like a name is no missing file.
bool IsFieldWord(const std::string& word) {
    if (IsPattern(word) || FruImage::ParseFieldName(word) || ParseRecordName(word))
        return true;
    const bool beginsAsName = FruImage::AreaFromName(word.substr(0, word.find('.'))).has_value();
    std::error_code ignored;
    return beginsAsName && !std::filesystem::exists(word, ignored);
}

std::vector<AREA_ID> AreasOf(const std::vector<std::string>& words) {
    std::vector<AREA_ID> areas;
    for (const std::string& word : words)
        if (!IsPattern(word))
            areas.push_back(ParseRecordName(word) ? AREA_ID::MULTIRECORD : NamedField(word).area);
    return areas;
}

/// The entries of a word, in the order of the FRU. @throws CToolError if there are none
std::vector<ENTRY> Wanted(const CONTENTS& contents, const std::string& word) {
    std::vector<ENTRY> wanted;
    if (IsPattern(word)) {
        for (ENTRY& entry : Entries(contents.fru))
            if (fnmatch(word.c_str(), entry.name.c_str(), 0) == 0)
                wanted.push_back(std::move(entry));
    } else {
        const auto record = ParseRecordName(word);
        if (auto entry = FindEntry(contents.fru, record ? RecordNameText(record->index, record->key) : word))
            wanted.push_back(std::move(*entry));
        else
            RequireAreas(contents, AreasOf({word}));
    }
    if (wanted.empty())
        throw CToolError(EXIT_REFUSED, word, fmt::format("{} has no such field", contents.source.label),
                         "'fructl show' lists the fields that it has");
    return wanted;
}

/// The values of one source: a line each behind `prefix`, and as JSON.
nlohmann::json GetOne(const CONTENTS& contents, const std::vector<std::string>& words, const GET_OPTIONS& options,
                      const std::string& prefix) {
    nlohmann::json values = nlohmann::json::object();
    std::string text;
    for (const std::string& word : words) {
        for (const ENTRY& entry : Wanted(contents, word)) {
            const std::string name = options.withNames ? entry.name + "=" : std::string();
            text += prefix + name + (options.raw ? Hex(entry.raw) : entry.bare) + "\n";
            values[entry.name] = {{"value", entry.bare}, {"type", entry.type}, {"raw", Hex(entry.raw)}};
        }
    }
    if (!Settings().json)
        PrintText(text);
    return {{"source", JsonSource(contents.source)}, {"values", std::move(values)}};
}

void Get(CSources& arguments, const GET_OPTIONS& options) {
    const std::vector<SOURCE> sources = arguments.TakeWhile(IsFieldWord);
    const std::vector<std::string>& words = arguments.Words();
    if (words.empty())
        throw CToolError(EXIT_USAGE, "get", "a field is missing",
                         "for example: fructl get board.fru board.serial-number");
    const std::vector<AREA_ID> areas = AreasOf(words);
    const bool isOne = sources.size() == 1;
    nlohmann::json all = nlohmann::json::array();
    std::vector<CONTENTS> opened;
    for (const SOURCE& source : sources) {
        opened.push_back(Open(source));
        all.push_back(GetOne(opened.back(), words, options, isOne ? "" : source.label + ":"));
    }
    if (Settings().json)
        PrintJson(isOne ? all[0] : nlohmann::json{{"sources", std::move(all)}});
    for (const CONTENTS& contents : opened)
        RequireAreas(contents, areas);
}

} // namespace

void AddGet(CLI::App& app) {
    CLI::App& command =
        NewCommand(app, "get", "Print the bare values of fields, one a line",
                   "  fructl get board.fru board.serial-number\n"
                   "  fructl get --system product.asset-tag chassis.custom1\n"
                   "  fructl get image.bin '*.serial-number' --with-names     as 'fructl set' takes them\n"
                   "  fructl get *.fru 'board.[ps]*-number'                   each line behind its file's name\n"
                   "  fructl get image.bin board.mfg-date --json\n"
                   "In a name, * stands for any characters, ? for one, [abc] for one of these.");
    const auto sources = std::make_shared<CSources>(command, "SOURCE... AREA.FIELD...", "Files, then names of fields");
    const auto options = std::make_shared<GET_OPTIONS>();
    command.add_flag("--raw", options->raw, "The fields' bytes in hexadecimal");
    command.add_flag("--with-names", options->withNames, "NAME=VALUE");
    command.callback([sources, options] { Get(*sources, *options); });
}

} // namespace Fructl
