#include "tools/strc/source.h"

#include "common/placeholders.h"
#include "common/stringid.h"
#include "tools/strc/utf8.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace Frudata_Private {

namespace {

struct CKnownText {
    unsigned int number;
    std::string_view name;
    const char* arguments;
};

constexpr CKnownText KNOWN_TEXTS[] = {
#define FRU_KNOWN_TEXT(number, name, arguments) {number, #name, arguments},
    FRU_STRING_IDS(FRU_KNOWN_TEXT)
#undef FRU_KNOWN_TEXT
};

constexpr std::string_view BLANKS = " \t\r";

/// One line `number NAME "text"` in parts.
struct CEntry {
    unsigned int number = 0;
    std::string_view name;
    std::string text;
};

void SkipBlanks(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
}

std::string_view TakeWord(std::string_view& line) {
    const std::string_view word = line.substr(0, line.find_first_of(BLANKS));
    line.remove_prefix(word.size());
    SkipBlanks(line);
    return word;
}

/// Takes a quoted text off the front of `line`. @return null, or its fault
const char* TakeQuoted(std::string_view& line, std::string& text) {
    if (line.empty() || line.front() != '"')
        return "the text must follow in double quotes";
    for (std::size_t i = 1; i < line.size(); ++i) {
        char character = line[i];
        if (character == '"') {
            line.remove_prefix(i + 1);
            return nullptr;
        }
        if (character == '\\') {
            character = ++i < line.size() ? line[i] : '\0';
            if (character != '"' && character != '\\')
                return "a backslash stands before \" and \\ only";
        }
        text += character;
    }
    return "the closing double quote is missing";
}

const char* ParseEntry(std::string_view line, CEntry& entry) {
    const std::string_view number = TakeWord(line);
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), entry.number);
    if (error != std::errc() || end != number.data() + number.size())
        return "a line begins with the number of a text, or with # for a comment";
    entry.name = TakeWord(line);
    if (const char* fault = TakeQuoted(line, entry.text))
        return fault;
    SkipBlanks(line);
    return line.empty() ? nullptr : "there is something after the text";
}

std::string NumberAndName(const CKnownText& known) {
    return std::to_string(known.number) + " " + std::string(known.name);
}

std::string DescribeArguments(const char* arguments) {
    std::string description;
    for (; *arguments; ++arguments) {
        description += description.empty() ? "" : ", ";
        description += *arguments == 's' ? "%s" : *arguments == 'w' ? "%ls" : "%u";
    }
    return description.empty() ? "none" : description;
}

/// Checks `entry` against stringid.h. @return the fault, or an empty text
std::string CheckEntry(const CEntry& entry, const std::u16string& text) {
    const auto* known = std::ranges::find(KNOWN_TEXTS, entry.number, &CKnownText::number);
    if (known == std::end(KNOWN_TEXTS))
        return "there is no text " + std::to_string(entry.number);
    if (entry.name != known->name)
        return "text " + NumberAndName(*known) + " has the wrong name";
    if (text.empty())
        return "text " + NumberAndName(*known) + " is empty";
    if (!PlaceholdersMatch(text.c_str(), known->arguments))
        return "text " + NumberAndName(*known) + " has the wrong placeholders; it takes " +
               DescribeArguments(known->arguments);
    return {};
}

/// Adds the entry of one line to `table`. @return the fault, or an empty text
std::string AddLine(std::string_view line, TEXT_TABLE& table) {
    CEntry entry;
    std::u16string text;
    if (const char* fault = ParseEntry(line, entry))
        return fault;
    if (const char* fault = DecodeUtf8(entry.text, text))
        return fault;
    std::string fault = CheckEntry(entry, text);
    if (fault.empty() && !table[entry.number].empty())
        fault = "text " + std::to_string(entry.number) + " is there twice";
    if (fault.empty())
        table[entry.number] = std::move(text);
    return fault;
}

} // namespace

TEXT_TABLE ReadSource(std::istream& source, const std::string& fileName, std::vector<std::string>& faults) {
    TEXT_TABLE table(std::ranges::max(KNOWN_TEXTS, {}, &CKnownText::number).number + 1);
    std::string line;
    std::size_t lineNumber = 0;
    const auto addFault = [&](const std::string& fault) {
        faults.push_back(fileName + ":" + std::to_string(lineNumber) + ": " + fault);
    };
    while (std::getline(source, line)) {
        ++lineNumber;
        std::string_view content = line;
        SkipBlanks(content);
        if (content.empty() || content.front() == '#')
            continue;
        const std::string fault = AddLine(content, table);
        if (!fault.empty())
            addFault(fault);
    }
    // A faulty line would count again as a missing text.
    if (!faults.empty())
        return table;
    for (const CKnownText& known : KNOWN_TEXTS)
        if (table[known.number].empty())
            addFault("text " + NumberAndName(known) + " is missing");
    return table;
}

} // namespace Frudata_Private
