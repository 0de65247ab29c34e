#include "tools/fructl/edit.h"

#include "tools/fructl/fieldname.h"
#include "tools/fructl/files.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/toolerror.h"
#include "tools/fructl/words/words.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <variant>

namespace Fructl {

namespace {

using FruImage::ENCODING;

constexpr const char* EXAMPLE = "for example: board.serial-number=AB123";

/// NAME or NAME:ENCODING.
std::optional<ENCODING> TakeEncoding(std::string& name) {
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    const std::string word = name.substr(colon + 1);
    name.resize(colon);
    if (const auto encoding = FruImage::EncodingFromName(word))
        return encoding;
    throw CToolError(EXIT_USAGE, name + ":" + word, "there is no such encoding",
                     "encodings: text, 6-bit, bcd+, binary, two-byte");
}

std::string PresentMinute() {
    const std::time_t now = std::time(nullptr);
    char text[32] = "";
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%MZ", std::gmtime(&now));
    return text;
}

/// The value of a field that is no text: what this run's language calls it counts as well as what the standard does.
std::string Meant(const FIELD_NAME& name, const std::string& value) {
    const FIELD_KIND kind =
        name.part == FIELD_NAME::FIXED ? AreaRow(name.area).fields[name.index].kind : FIELD_KIND::TEXT;
    if (kind == FIELD_KIND::TEXT && name.part != FIELD_NAME::LANGUAGE)
        return value;
    const std::string meant = InEnglish(value);
    return kind == FIELD_KIND::DATE && meant == "now" ? PresentMinute() : meant;
}

EDIT AreaEdit(const FIELD_NAME& name, const std::string& value, bool resize) {
    if (value.starts_with('@'))
        return ReplaceArea(name.area, AreaBytes(value.substr(1)), resize);
    const auto bytes = FromHex(value);
    if (!bytes)
        throw CToolError(EXIT_REFUSED, FieldNameText(name), "the value is not hexadecimal",
                         "write pairs of digits, or @FILE");
    return ReplaceArea(name.area, *bytes, resize);
}

EDIT Assignment(std::string name, const std::string& value, const EDIT_OPTIONS& options) {
    const auto encoding = TakeEncoding(name);
    if (name.ends_with(".custom+"))
        return FruImage::ADD_FIELD{NamedArea(name.substr(0, name.find('.'))), value, encoding};
    const FIELD_NAME field = NamedField(name);
    if (field.part == FIELD_NAME::DATA)
        return AreaEdit(field, value, options.resizeInternal);
    return FruImage::SET_FIELD{field, Meant(field, value), encoding};
}

EDIT Removal(const std::string& name) {
    // "multirecord.2": the name of a field of the record, without the field.
    if (const auto record = ParseRecordName(name + ".type"))
        return FruImage::REMOVE_RECORD{record->index};
    if (name.find('.') == std::string::npos)
        return FruImage::REMOVE_AREA{NamedArea(name)};
    return FruImage::REMOVE_FIELD{NamedField(name)};
}

/// Names refer to the FRU before the first change: remove the last custom fields and records first.
void SortRemovals(std::vector<EDIT>& removals) {
    const auto index = [](const EDIT& edit) {
        const auto* record = std::get_if<FruImage::REMOVE_RECORD>(&edit);
        const auto* field = std::get_if<FruImage::REMOVE_FIELD>(&edit);
        return field ? field->name.index : record ? record->index : 0;
    };
    std::stable_sort(removals.begin(), removals.end(),
                     [&](const EDIT& a, const EDIT& b) { return index(a) > index(b); });
}

/// Orders the set fields so that new custom fields follow each other.
std::vector<EDIT> InOrder(std::vector<EDIT> assignments, std::vector<EDIT> removals) {
    SortRemovals(removals);
    assignments.insert(assignments.end(), removals.begin(), removals.end());
    return assignments;
}

void CheckTwice(const EDIT& edit, std::vector<FIELD_NAME>& seen) {
    const auto* set = std::get_if<FruImage::SET_FIELD>(&edit);
    if (!set)
        return;
    if (std::find(seen.begin(), seen.end(), set->name) != seen.end())
        throw CToolError(EXIT_USAGE, FieldNameText(set->name), "is set twice");
    seen.push_back(set->name);
}

/// Digits of the lines of a dump, or all of the text.
std::string DumpDigits(const std::string& text) {
    constexpr std::size_t OFFSET = 6;
    constexpr std::size_t PAIRS = 47;
    std::string digits;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        const bool isDump = line.size() > OFFSET && line[OFFSET - 2] == ' ' && line[OFFSET - 1] == ' ';
        digits += (isDump ? line.substr(OFFSET, PAIRS) : line) + " ";
        begin = end + 1;
    }
    return digits;
}

/// The edit that gives `target` the value of `field`.
EDIT CopyField(const FIELD_NAME& name, const FIELD& field, bool sameLanguage) {
    if (field.kind == FIELD_KIND::TEXT && sameLanguage)
        return FruImage::SET_BYTES{name, field.encoding, field.bytes};
    if (field.kind == FIELD_KIND::CHASSIS_TYPE)
        return FruImage::SET_FIELD{name, std::to_string(field.bytes.empty() ? 0 : field.bytes[0]), {}};
    return FruImage::SET_FIELD{name, field.text, {}};
}

} // namespace

CHANGES ParseEdits(const std::vector<std::string>& words, const EDIT_OPTIONS& options) {
    CHANGES changes;
    std::vector<EDIT> assignments;
    std::vector<EDIT> removals;
    std::vector<FIELD_NAME> seen;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos && word.ends_with('-')) {
            removals.push_back(Removal(word.substr(0, word.size() - 1)));
            continue;
        }
        if (equals == std::string::npos)
            throw CToolError(EXIT_USAGE, word, "is no AREA.FIELD=VALUE", EXAMPLE);
        if (auto record = ParseRecordName(word.substr(0, equals))) {
            changes.records.push_back({std::move(*record), word.substr(equals + 1)});
            continue;
        }
        assignments.push_back(Assignment(word.substr(0, equals), word.substr(equals + 1), options));
        CheckTwice(assignments.back(), seen);
    }
    for (const std::string& name : options.remove)
        removals.push_back(Removal(name));
    if (assignments.empty() && removals.empty() && changes.records.empty())
        throw CToolError(EXIT_USAGE, "command line", "an AREA.FIELD=VALUE is missing", EXAMPLE);
    changes.edits = InOrder(std::move(assignments), std::move(removals));
    return changes;
}

BYTES AreaBytes(const std::string& path) {
    BYTES bytes = ReadFile(path);
    if (bytes.empty())
        throw CToolError(EXIT_REFUSED, path, "is empty");
    const bool isText =
        std::all_of(bytes.begin(), bytes.end(), [](UINT8 byte) { return std::isprint(byte) || std::isspace(byte); });
    if (!isText)
        return bytes;
    const auto parsed = FromHex(DumpDigits(std::string(bytes.begin(), bytes.end())));
    if (!parsed)
        throw CToolError(EXIT_REFUSED, path, "is neither hexadecimal text nor binary");
    return *parsed;
}

EDIT ReplaceArea(AREA_ID area, BYTES bytes, bool resize) {
    if (area == AREA_ID::INTERNAL_USE)
        return FruImage::SET_INTERNAL{std::move(bytes), resize};
    if (area == AREA_ID::MULTIRECORD)
        return FruImage::SET_RECORD_BYTES{std::move(bytes)};
    throw CToolError(EXIT_REFUSED, "header", "it says where the areas lie and cannot be replaced",
                     "'fructl restore' writes whole images, 'fructl repair' rebuilds a damaged header");
}

std::vector<EDIT> CopyFields(const FRU& values, const FRU& target) {
    std::vector<EDIT> edits;
    for (const AREA& area : values.areas) {
        const AREA* to = target.Find(area.id);
        if (!to && area.IsInfo() && !Settings().force)
            throw CToolError(EXIT_REFUSED, std::string(AreaName(area.id)), "the device has no such area",
                             "--force leaves it out, 'fructl set' adds it");
        for (std::size_t position = 0; to && area.IsInfo() && position < area.fields.size(); ++position) {
            const FIELD_NAME name = FruImage::FieldAt(area.id, position);
            const FIELD* before = target.Find(name);
            const FIELD& field = area.fields[position];
            if (!before || before->bytes != field.bytes || before->typeLength != field.typeLength)
                edits.push_back(CopyField(name, field, to->language == area.language));
        }
    }
    return edits;
}

void Refuse(const FruImage::ERROR& error, const std::string& source) {
    using FruImage::REFUSAL;
    std::string what = !error.field.empty()            ? error.field
                       : error.area == AREA_ID::HEADER ? source
                                                       : std::string(AreaName(error.area));
    throw CToolError(error.code == REFUSAL::DAMAGED ? EXIT_DAMAGED : EXIT_REFUSED, std::move(what), error.text,
                     error.hint);
}

PLAN MakePlan(const CONTENTS& contents, const CHANGES& changes, FruImage::LIMITS limits) {
    std::vector<EDIT> edits = RecordEdits(changes.records, contents.fru);
    edits.insert(edits.end(), changes.edits.begin(), changes.edits.end());
    const std::size_t known = contents.SizeLimit();
    if (limits.deviceSize == 0 || (contents.sizeKnown && known != 0))
        limits.deviceSize = known;
    auto plan = FruImage::Apply(contents.fru, edits, limits);
    if (!plan)
        Refuse(plan.Error(), contents.source.label);
    return plan.Take();
}

} // namespace Fructl
