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

/// The values of one source, a line each behind `prefix`, or as JSON.
nlohmann::json GetOne(const CONTENTS& contents, const std::vector<std::string>& words, const GET_OPTIONS& options,
                      const std::string& prefix) {
    nlohmann::json values = nlohmann::json::object();
    std::string text;
    for (const std::string& word : words) {
        for (const ENTRY& entry : Wanted(contents, word)) {
            const std::string name = options.withNames ? entry.name + "=" : std::string();
            text += prefix + name + (options.raw ? Hex(entry.raw) : entry.ShownBare()) + "\n";
            values[entry.name] = {{"value", entry.bare}, {"type", entry.type}, {"raw", Hex(entry.raw)}};
        }
    }
    if (!Settings().json)
        PrintText(text);
    return values;
}

/// Several sources: one that fails keeps nobody from the values of the others. @throws CToolError with the status of
/// the first failure
void GetEach(const std::vector<NAMED_SOURCE>& sources, const std::vector<std::string>& words,
             const GET_OPTIONS& options, const std::vector<AREA_ID>& areas) {
    nlohmann::json all = nlohmann::json::array();
    std::vector<CToolError> failures;
    for (const NAMED_SOURCE& source : sources) {
        nlohmann::json one = {{"source", {{"name", source.name}}}};
        try {
            const CONTENTS contents = Open(source.Get());
            one["source"] = JsonSource(contents.source);
            one["values"] = GetOne(contents, words, options, contents.source.label + ":");
            RequireAreas(contents, areas);
        } catch (const CToolError& error) {
            one["problem"] = error.m_why;
            Complain(error);
            failures.push_back(error);
        }
        all.push_back(std::move(one));
    }
    if (Settings().json)
        PrintJson({{"sources", std::move(all)}});
    if (!failures.empty())
        throw CToolError(failures[0].m_status, "get",
                         fmt::format("{} of {} sources failed", failures.size(), sources.size()));
}

void Get(CSources& arguments, const GET_OPTIONS& options) {
    const std::vector<NAMED_SOURCE> sources = arguments.TakeWhile(IsFieldWord);
    const std::vector<std::string>& words = arguments.Words();
    if (words.empty())
        throw CToolError(EXIT_USAGE, "get", "a field is missing",
                         "for example: fructl get board.fru board.serial-number");
    const std::vector<AREA_ID> areas = AreasOf(words);
    if (sources.size() == 1) {
        const CONTENTS contents = Open(sources[0].Get());
        nlohmann::json values = GetOne(contents, words, options, "");
        if (Settings().json)
            PrintJson({{"source", JsonSource(contents.source)}, {"values", std::move(values)}});
        RequireAreas(contents, areas);
    } else {
        GetEach(sources, words, options, areas);
    }
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
