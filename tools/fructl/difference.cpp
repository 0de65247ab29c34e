#include "tools/fructl/difference.h"

#include "tools/fructl/jsonreport.h"
#include "tools/fructl/recordwords.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/words/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Fructl {

namespace {

using FruImage::CHANGE;
using FruImage::MOVE;
using FruImage::PLAN;
using nlohmann::json;

/// Whether it is a value, not a consequence such as a checksum.
bool IsValue(const CHANGE& change) {
    return change.name.find('.') != std::string::npos && !(change.before.empty() && change.after.empty());
}

/// Names of the standard, dates among them, have words of this language; texts are what they are.
std::string Words(const std::string& name, const std::string& value) {
    const auto field = FruImage::ParseFieldName(name);
    if (field && field->part == FIELD_NAME::LANGUAGE) {
        const auto code = ParseNumber(value, 0xFF);
        const std::string_view language = FruImage::LanguageName(static_cast<UINT8>(code.value_or(0xFF)));
        return language.empty() ? value : std::string(Word(language));
    }
    const bool isName =
        field && field->part == FIELD_NAME::FIXED && AreaRow(field->area).fields[field->index].kind != FIELD_KIND::TEXT;
    return isName || name.starts_with("multirecord.record") ? Spoken(value) : value;
}

std::string Side(const std::string& name, const std::string& value) {
    return "\"" + Printable(Words(name, value)) + "\"";
}

std::string MoveText(const MOVE& move) {
    const std::string_view name = AreaName(move.area);
    if (move.sizeBefore == 0)
        return Say("{} area: new, {} bytes at {:03X}h", name, move.sizeAfter, move.to);
    if (move.sizeAfter == 0)
        return Say("{} area: removed", name);
    std::string text = Say("{} area:", name);
    if (move.from != move.to)
        text += " " + Say("moves from {:03X}h to {:03X}h", move.from, move.to);
    if (move.sizeBefore != move.sizeAfter)
        text += (move.from != move.to ? ", " : " ") + Say("{} bytes become {}", move.sizeBefore, move.sizeAfter);
    return text;
}

/// Whether the change is of a place or a size: the moves tell those.
bool IsMoved(const PLAN& plan, const CHANGE& change) {
    return std::any_of(plan.moves.begin(), plan.moves.end(), [&](const MOVE& move) {
        return move.area == change.area && AreaName(move.area) == change.name;
    });
}

/// The changes that the moves do not tell, records field by field.
std::vector<CHANGE> Shown(const PLAN& plan, const FRU& before, const FRU& after) {
    std::vector<CHANGE> records;
    for (const DIFFERENCE& one : Compare(before, after))
        if (ParseRecordName(one.Name()))
            records.push_back({AREA_ID::MULTIRECORD, one.Name(), one.left ? one.left->Shown() : "",
                               one.right ? one.right->Shown() : "", ""});
    std::vector<CHANGE> changes;
    for (const CHANGE& change : plan.changes) {
        const bool isRecord = change.area == AREA_ID::MULTIRECORD && IsValue(change) && !records.empty();
        if (!isRecord && (IsValue(change) || !IsMoved(plan, change)))
            changes.push_back(change);
    }
    changes.insert(changes.end(), records.begin(), records.end());
    return changes;
}

} // namespace

std::string DescribePlan(const PLAN& plan, const FRU& before, const FRU& after) {
    const std::vector<CHANGE> changes = Shown(plan, before, after);
    std::size_t width = 0;
    for (const CHANGE& change : changes)
        width = std::max(width, IsValue(change) ? change.name.size() : 0);
    std::string text;
    for (const CHANGE& change : changes) {
        if (IsValue(change))
            text += fmt::format("  {:<{}}  {} -> {}\n", change.name, width, Side(change.name, change.before),
                                Side(change.name, change.after));
        else
            text += fmt::format("  {}: {}\n", change.name, Spoken(change.text));
    }
    for (const MOVE& move : plan.moves)
        text += fmt::format("  {}\n", MoveText(move));
    for (const std::string& note : plan.notes)
        text += "  " + Say("note: {}", Spoken(note)) + "\n";
    return text;
}

json JsonMoves(const PLAN& plan) {
    json moves = json::array();
    for (const MOVE& move : plan.moves)
        moves.push_back({{"area", AreaName(move.area)},
                         {"from", move.from},
                         {"to", move.to},
                         {"sizeBefore", move.sizeBefore},
                         {"sizeAfter", move.sizeAfter}});
    return moves;
}

json JsonChanges(const FRU& before, const FRU& after) {
    json changes = json::array();
    for (const DIFFERENCE& one : Compare(before, after))
        changes.push_back({{"name", one.Name()},
                           {"before", one.left ? JsonEntry(*one.left) : json()},
                           {"after", one.right ? JsonEntry(*one.right) : json()}});
    return changes;
}

} // namespace Fructl
