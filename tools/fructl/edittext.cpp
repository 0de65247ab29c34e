#include "tools/fructl/edittext.h"

#include "tools/fructl/bytes.h"
#include "tools/fructl/compare.h"
#include "tools/fructl/recordwords.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/titles.h"
#include "tools/fructl/words/words.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

namespace Fructl {

namespace {

constexpr std::string_view MARK = "#! ";
constexpr std::string_view BLANKS = " \t\r";

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(BLANKS);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(BLANKS) - begin + 1);
}

/// The value for people: in quotes if the line would not keep it.
std::string Quoted(const std::string& value) {
    const std::string shown = Printable(value);
    if (shown == value && Trimmed(value) == value && !value.starts_with('"'))
        return value;
    std::string text = "\"";
    for (std::size_t at = 0; at < value.size(); ++at) {
        auto character = static_cast<UINT8>(value[at]);
        // U+0080 to U+009F: UTF-8 has them behind C2h.
        if (character == 0xC2 && at + 1 < value.size() && static_cast<UINT8>(value[at + 1]) < 0xA0)
            text += fmt::format("\\x{:02X}", static_cast<UINT8>(value[++at]));
        else if (character < 0x20 || character == 0x7F)
            text += fmt::format("\\x{:02X}", character);
        else
            text += (character == '"' || character == '\\' ? "\\" : "") + std::string(1, value[at]);
    }
    return text + "\"";
}

std::string Utf8Character(unsigned number) {
    if (number < 0x80)
        return std::string(1, static_cast<char>(number));
    return {static_cast<char>(0xC0 | (number >> 6)), static_cast<char>(0x80 | (number & 0x3F))};
}

/// The value of `text`; nothing for wrong quotes or an unknown escape.
std::optional<std::string> Unquoted(std::string_view text) {
    if (!text.starts_with('"'))
        return std::string(text);
    std::string value;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"')
            return at + 1 == text.size() ? std::optional<std::string>(value) : std::nullopt;
        if (text[at] != '\\') {
            value += text[at];
            continue;
        }
        const char next = ++at < text.size() ? text[at] : '\0';
        const auto bytes = next == 'x' ? FromHex(text.substr(at + 1, 2)) : std::nullopt;
        if (bytes && bytes->size() == 1) {
            value += Utf8Character(bytes->front());
            at += 2;
        } else if (next == '"' || next == '\\') {
            value += next;
        } else {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::string Value(const ENTRY& entry) {
    return entry.type == "language" && entry.bare.empty() ? std::to_string(entry.raw.at(0)) : entry.ShownBare();
}

/// The comment in front of an entry's line.
std::string Remark(const ENTRY& entry) {
    if (entry.type == "chassis-type")
        return "# " + Say("a name or a number: 'fructl fields' lists them") + "\n";
    if (entry.type == "date")
        return "# " + Say("UTC; or now, or unspecified") + "\n";
    const bool isMarked =
        (entry.type == "6-bit" || entry.type == "bcd+" || entry.type == "binary") && !entry.raw.empty();
    return isMarked ? fmt::format("# {}\n", entry.type) : std::string();
}

std::string Heading(const FRU& fru, const AREA& area) {
    std::string text = fmt::format("\n# --- {}: {}", AreaTitle(area.id), SayCount(area.length, "byte"));
    if (area.IsInfo())
        text += ", " + Say("{} free", area.Free());
    text += "\n";
    if (area.damaged)
        text +=
            "# " + Say("Damaged, to be repaired before it is changed: {}", Spoken(ProblemText(fru, area.id))) + "\n";
    if (area.id == AREA_ID::INTERNAL_USE)
        text += "# " + Say("internal.data = BYTES in hexadecimal, or @FILE, replaces them") + "\n";
    return text;
}

std::string RecordHeading(const FRU& fru, const ENTRY& entry) {
    const auto name = ParseRecordName(entry.name);
    const AREA* area = fru.Find(AREA_ID::MULTIRECORD);
    if (entry.type != "record-type" || !name || !area || name->index >= area->records.size())
        return {};
    return fmt::format("# {}\n", Decoded(area->records[name->index]).title);
}

std::string Introduction(const std::string& label) {
    std::string text;
    for (const std::string& line :
         {Say("{}: one NAME = VALUE a line. The difference is shown before anything is written.", label),
          Say("  NAME =                  empties a field"),
          Say("  product.custom3 = Rack  adds a custom field, with the next number or custom+"),
          Say("  NAME:6-bit = VALUE      chooses an encoding: text, 6-bit, bcd+, binary, two-byte"),
          Say("A custom field goes with its line, and a record with the last of its lines; any other line may be "
              "missing."),
          Say("A value in \"\" keeps blanks around it, and has \\xNN for a character by its number, \\\" and \\\\.")})
        text += "# " + line + "\n";
    return text;
}

std::string MissingAreas(const FRU& fru) {
    std::string names;
    for (const AREA_ROW& row : Areas())
        if (row.IsInfo() && !fru.Find(row.id))
            names += fmt::format("{}{}", names.empty() ? "" : ", ", row.name);
    return names.empty()
               ? names
               : "\n# " +
                     Say("Not there: {}. A line with a name of theirs, as 'fructl fields' lists them, adds the area.",
                         names) +
                     "\n";
}

CEditedText::LINE ReadLine(std::string text) {
    CEditedText::LINE line{std::move(text)};
    const std::string_view trimmed = Trimmed(line.text);
    if (trimmed.empty() || trimmed.starts_with('#'))
        return line;
    const std::size_t equals = trimmed.find('=');
    const auto value = equals == std::string_view::npos ? std::nullopt : Unquoted(Trimmed(trimmed.substr(equals + 1)));
    if (!IsUtf8(line.text))
        line.problem = "is not valid UTF-8";
    else if (equals == std::string_view::npos)
        line.problem = "is no NAME = VALUE; a comment begins with #";
    else if (!value)
        line.problem = "the quotes do not end with the line, or a backslash in them stands before none of \" \\ xNN";
    if (line.problem.empty()) {
        line.name = Trimmed(trimmed.substr(0, equals));
        line.value = *value;
    }
    return line;
}

std::string BareName(const std::string& name) {
    return std::string(Trimmed(std::string_view(name).substr(0, name.find(':'))));
}

/// "multirecord.N" of the name of a record's field; empty for any other.
std::string RecordOf(const std::string& name) {
    constexpr std::string_view AREA = "multirecord.";
    const std::size_t dot = name.starts_with(AREA) ? name.find('.', AREA.size()) : std::string::npos;
    return dot == std::string::npos ? std::string() : name.substr(0, dot);
}

} // namespace

std::string EditText(const CONTENTS& contents) {
    const FRU& fru = contents.fru;
    std::string text = Introduction(Printable(contents.source.label));
    const std::vector<ENTRY> entries = Entries(fru);
    for (const AREA& area : fru.areas) {
        text += Heading(fru, area);
        for (const ENTRY& entry : entries)
            if (entry.area == area.id && !entry.name.ends_with(".data"))
                text += fmt::format("{}{}{} = {}\n", RecordHeading(fru, entry), Remark(entry), entry.name,
                                    Quoted(Value(entry)));
    }
    return text + MissingAreas(fru);
}

CEditedText::CEditedText(const std::string& text, const CONTENTS& contents) {
    m_present["header.data"] = Hex(contents.fru.header, " ");
    for (const ENTRY& entry : Entries(contents.fru)) {
        const auto field = FruImage::ParseFieldName(entry.name);
        if (field && field->part == FIELD_NAME::CUSTOM)
            m_removable.push_back(entry.name);
        else if (entry.type == "record-type")
            m_removable.push_back(RecordOf(entry.name));
        m_present.emplace(entry.name, Value(entry));
    }
    std::unordered_set<std::string> seen;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        LINE line = ReadLine(text.substr(begin, end - begin));
        begin = end + 1;
        if (line.text.starts_with(MARK))
            continue;
        const std::string name = BareName(line.name);
        if (!name.empty() && !name.ends_with('+') && !seen.insert(name).second)
            line.problem = name + " has a line already";
        m_lines.push_back(std::move(line));
    }
}

bool CEditedText::IsEmpty() const {
    return std::all_of(m_lines.begin(), m_lines.end(),
                       [](const LINE& line) { return line.name.empty() && line.problem.empty(); });
}

std::string CEditedText::Word(const LINE& line) const {
    const auto present = m_present.find(line.name);
    const bool says = line.name.empty() || (present != m_present.end() && present->second == line.value);
    return says ? std::string() : line.name + "=" + line.value;
}

std::vector<std::string> CEditedText::Removals() const {
    std::unordered_set<std::string> kept;
    for (const LINE& line : m_lines) {
        kept.insert(BareName(line.name));
        kept.insert(RecordOf(line.name));
    }
    std::vector<std::string> removals;
    for (const std::string& name : m_removable)
        if (!kept.contains(name))
            removals.push_back(name + "-");
    return removals;
}

std::string CEditedText::Text() const {
    std::string text;
    for (const LINE& line : m_lines)
        text += line.text + "\n";
    return text;
}

std::string CEditedText::Marked(const std::string& problem) const {
    std::string text = problem.empty() ? problem : fmt::format("{}{}\n", MARK, problem);
    for (const LINE& line : m_lines)
        text += line.text + "\n" + (line.problem.empty() ? "" : fmt::format("{}^ {}\n", MARK, line.problem));
    return text;
}

std::string CEditedText::Problems() const {
    std::string text;
    for (const LINE& line : m_lines)
        if (!line.problem.empty())
            text += fmt::format("{}\"{}\": {}", text.empty() ? "" : "; ", Printable(Trimmed(line.text)), line.problem);
    return text;
}

} // namespace Fructl
