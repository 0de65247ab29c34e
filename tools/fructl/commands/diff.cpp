#include "tools/fructl/commands/commands.h"

#include "tools/fructl/compare.h"
#include "tools/fructl/words/words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Fructl {

namespace {

constexpr std::size_t SHOWN = 60;

std::string Side(const std::optional<ENTRY>& entry) {
    if (!entry)
        return Say("(not there)");
    if (entry->value.size() > SHOWN && entry->type == "binary")
        return fmt::format("{}... ({})", entry->value.substr(0, SHOWN), SayCount(entry->raw.size(), "byte"));
    const bool marked = entry->type == "6-bit" || entry->type == "bcd+" || entry->type == "binary";
    return fmt::format("\"{}\"{}", entry->Shown(), marked ? fmt::format(" [{}]", entry->type) : "");
}

nlohmann::json JsonSide(const std::optional<ENTRY>& entry) {
    if (!entry)
        return nullptr;
    return {{"value", entry->value}, {"type", entry->type}, {"raw", Hex(entry->raw)}};
}

std::string TextDifferences(const std::vector<DIFFERENCE>& differences) {
    std::string text;
    for (const DIFFERENCE& one : differences)
        text += fmt::format("{}\n  {}\n  {}\n", Colored(COLOR::BOLD, one.Name()),
                            Colored(COLOR::RED, "- " + Side(one.left)), Colored(COLOR::GREEN, "+ " + Side(one.right)));
    return text;
}

void Diff(CSources& sources, bool exitCode) {
    const std::vector<SOURCE> both = sources.TakeAll(2);
    const CONTENTS left = Open(both[0]);
    const CONTENTS right = Open(both[1]);
    const std::vector<DIFFERENCE> differences = Compare(left.fru, right.fru);
    if (Settings().json) {
        nlohmann::json list = nlohmann::json::array();
        for (const DIFFERENCE& one : differences)
            list.push_back({{"name", one.Name()}, {"left", JsonSide(one.left)}, {"right", JsonSide(one.right)}});
        PrintJson({{"left", JsonSource(left.source)},
                   {"right", JsonSource(right.source)},
                   {"equal", differences.empty()},
                   {"differences", std::move(list)}});
    } else {
        PrintText(TextDifferences(differences));
    }
    left.RequireSound(false);
    right.RequireSound(false);
    if (exitCode && !differences.empty())
        throw CToolError(EXIT_UNVERIFIED, "diff", fmt::format("{} differences", differences.size()));
}

} // namespace

void AddDiff(CLI::App& app) {
    CLI::App& command = NewCommand(app, "diff", "Compare two FRUs field by field",
                                   "  fructl diff old.fru new.fru\n"
                                   "  fructl diff board.fru --system\n"
                                   "  fructl diff --at 'PSU 1' --at 'PSU 2' --exit-code");
    const auto sources = std::make_shared<CSources>(command, "SOURCE SOURCE", "Two files");
    const auto exitCode = std::make_shared<bool>(false);
    command.add_flag("--exit-code", *exitCode, "End with status 5 where they differ");
    command.callback([sources, exitCode] { Diff(*sources, *exitCode); });
}

} // namespace Fructl
