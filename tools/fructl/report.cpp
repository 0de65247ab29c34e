#include "tools/fructl/report.h"

#include "tools/fructl/recordwords.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/titles.h"
#include "tools/fructl/words/words.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace Fructl {

namespace {

constexpr const char* KINDS[] = {"FRU text file", "binary image", "device"};

std::string ChecksumText(const AREA& area) {
    if (area.checksum == area.expectedChecksum)
        return Say("checksum ok");
    return Colored(COLOR::RED, Say("checksum {:02X}h, should be {:02X}h", area.checksum, area.expectedChecksum));
}

std::string AreaHeading(const AREA& area) {
    std::string text = Colored(COLOR::BOLD, AreaTitle(area.id));
    text += "  " + Say("{} at {:03X}h", SayCount(area.length, "byte"), area.offset);
    if (area.IsInfo()) {
        const std::string_view language = FruImage::LanguageName(area.language);
        text += ", " + Say("{} free", area.Free()) + ", " + ChecksumText(area);
        if (area.Row().hasLanguage)
            text += ", " + Say("language {} ({})", area.language, language.empty() ? "?" : Word(language));
    }
    if (!area.certain)
        text += Colored(COLOR::YELLOW, ", " + Say("found by search"));
    return text + "\n";
}

std::string FieldRows(const AREA& area) {
    std::vector<std::vector<std::string>> rows;
    for (std::size_t position = 0; position < area.fields.size(); ++position) {
        const FIELD& field = area.fields[position];
        std::string value = field.kind == FIELD_KIND::TEXT ? field.text : Spoken(field.text);
        if (value.empty())
            value = Colored(COLOR::DIM, Say("(empty)"));
        const bool isPlain = field.kind != FIELD_KIND::TEXT || field.encoding == FruImage::ENCODING::TEXT;
        if (!isPlain && !field.bytes.empty())
            value += Colored(COLOR::DIM, fmt::format(" [{}]", TypeName(field)));
        if (field.cut)
            value += Colored(COLOR::RED, fmt::format(" [{}]", Say("cut")));
        rows.push_back({Colored(COLOR::DIM, FieldNameText(FruImage::FieldAt(area.id, position))),
                        Title(area.Row(), position), value});
    }
    return Table(rows);
}

std::string Indented(const std::string& text) {
    std::string result = "  ";
    for (const char character : text) {
        result += character;
        if (character == '\n')
            result += "  ";
    }
    result.erase(result.find_last_not_of(' ') + 1);
    return result;
}

/// Columns for a line: those of the terminal, if there is one.
std::size_t LineWidth() {
    constexpr std::size_t USUAL = 100;
    return TerminalWidth().value_or(USUAL);
}

/// `text` on lines of at most `width` columns, broken at blanks; further lines begin with `indent` blanks.
std::string Wrapped(std::string text, std::size_t indent, std::size_t width) {
    std::string lines;
    while (indent < width && Width(text) > width - indent) {
        std::size_t end = text.rfind(' ');
        while (end != std::string::npos && end > 0 && Width(text.substr(0, end)) > width - indent)
            end = text.rfind(' ', end - 1);
        if (end == std::string::npos || end == 0)
            break;
        lines += text.substr(0, end) + "\n" + std::string(indent, ' ');
        text.erase(0, end + 1);
    }
    return lines + text;
}

std::string RecordText(const RECORD& record, std::size_t number) {
    constexpr std::size_t INDENT = 4;
    const FruRecords::DECODED_RECORD decoded = Decoded(record);
    std::string text = fmt::format("  {}  {}  {}  {}\n", Say("record {}", number), Say("type {:02X}h", record.Type()),
                                   SayCount(record.data.size(), "byte"), decoded.title);
    std::size_t width = 0;
    for (const FruRecords::RECORD_LINE& line : decoded.lines)
        width = std::max(width, Width(line.title));
    for (const FruRecords::RECORD_LINE& line : decoded.lines)
        text += fmt::format("{:{}}{}  {}\n", "", INDENT, Padded(line.title, width),
                            Wrapped(line.text, INDENT + width + 2, LineWidth()));
    for (const std::string& note : decoded.notes)
        text += fmt::format("{:{}}{}\n", "", INDENT, Colored(COLOR::YELLOW, note));
    return text;
}

std::string RecordRows(const AREA& area) {
    std::string text;
    for (std::size_t number = 0; number < area.records.size(); ++number)
        text += RecordText(area.records[number], number + 1);
    return text;
}

std::string AreaText(const FRU& fru, const AREA& area) {
    if (area.IsInfo())
        return FieldRows(area);
    if (area.id == AREA_ID::INTERNAL_USE)
        return Indented(HexDump(fru.View(area.Range())));
    return RecordRows(area);
}

/// Findings without damage; damage ends the command with its own text.
std::string NoteRows(const FRU& fru) {
    std::string text;
    for (const FINDING& finding : fru.findings)
        if (finding.severity == SEVERITY::NOTE && fru.state != STATE::BLANK)
            text += fmt::format("  {}: {}\n", AreaName(finding.area), Spoken(finding.text));
    return text.empty() ? text : "\n" + Colored(COLOR::BOLD, Say("Notes")) + "\n" + text;
}

} // namespace

std::string TextReport(const CONTENTS& contents) {
    const FRU& fru = contents.fru;
    const SOURCE& source = contents.source;
    std::string text = fmt::format("{}  {}, {}", Colored(COLOR::BOLD, ShownLabel(source)), Word(KINDS[source.kind]),
                                   SayCount(fru.bytes.size(), "byte"));
    if (!source.title.empty() && source.title != source.label)
        text += fmt::format(", \"{}\"", Printable(source.title));
    if (source.kind == SOURCE::DEVICE)
        text += fmt::format(", {}", DeviceText(source));
    text += "\n";
    for (const AREA& area : fru.areas)
        text += "\n" + AreaHeading(area) + AreaText(fru, area);
    return text + NoteRows(fru);
}

void PrintText(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace Fructl
