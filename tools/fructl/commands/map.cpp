#include "tools/fructl/commands/commands.h"

#include "tools/fructl/titles.h"
#include "tools/fructl/words/words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Fructl {

namespace {

constexpr std::size_t COLUMNS = 64;
constexpr std::size_t MAXIMUM_ROWS = 16;

struct MARK {
    AREA_ID area;
    char letter; ///< a used byte; a free one is the letter in lower case
    COLOR color;
};
constexpr MARK MARKS[] = {{AREA_ID::HEADER, 'H', COLOR::BOLD},    {AREA_ID::INTERNAL_USE, 'I', COLOR::MAGENTA},
                          {AREA_ID::CHASSIS, 'C', COLOR::BLUE},   {AREA_ID::BOARD, 'B', COLOR::GREEN},
                          {AREA_ID::PRODUCT, 'P', COLOR::YELLOW}, {AREA_ID::MULTIRECORD, 'M', COLOR::CYAN}};

const MARK& MarkOf(AREA_ID area) {
    return *std::find_if(std::begin(MARKS), std::end(MARKS) - 1, [&](const MARK& mark) { return mark.area == area; });
}

/// One letter a byte: used, free, or of no area.
std::string Letters(const FRU& fru) {
    std::string letters(fru.bytes.size(), '.');
    const auto fill = [&](std::size_t begin, std::size_t end, char letter) {
        for (std::size_t position = begin; position < std::min(end, letters.size()); ++position)
            letters[position] = letter;
    };
    fill(0, FruImage::HEADER_SIZE, 'H');
    for (const AREA& area : fru.areas) {
        const char letter = MarkOf(area.id).letter;
        const std::size_t end = area.Range().End();
        fill(area.offset, end, letter);
        if (area.IsInfo() && area.length != 0) // free bytes lie between the end marker and the checksum
            fill(end - 1 - std::min(area.Free(), area.length - 1), end - 1, static_cast<char>(letter | 0x20));
    }
    return letters;
}

COLOR ColorOf(char letter) {
    for (const MARK& mark : MARKS)
        if ((letter & ~0x20) == mark.letter)
            return mark.color;
    return COLOR::DIM;
}

std::string ColoredRuns(const std::string& line) {
    std::string text;
    for (std::size_t begin = 0; begin < line.size();) {
        std::size_t end = begin + 1;
        while (end < line.size() && ColorOf(line[end]) == ColorOf(line[begin]))
            ++end;
        text += Colored(ColorOf(line[begin]), line.substr(begin, end - begin));
        begin = end;
    }
    return text;
}

/// One cell stands for several bytes of a large image and shows the first used one.
std::string Picture(const std::string& letters) {
    std::size_t bytesPerCell = 1;
    while (letters.size() > COLUMNS * MAXIMUM_ROWS * bytesPerCell)
        bytesPerCell *= 2;
    std::string text;
    const std::size_t used = letters.find_last_not_of('.') + 1;
    for (std::size_t row = 0; row < used; row += COLUMNS * bytesPerCell) {
        text += fmt::format("  {:04X}  ", row);
        std::string line;
        for (std::size_t cell = row; cell < std::min(row + COLUMNS * bytesPerCell, letters.size());
             cell += bytesPerCell) {
            const std::string part = letters.substr(cell, bytesPerCell);
            const auto shownByte = std::find_if(part.begin(), part.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
            line += shownByte == part.end() ? part[0] : *shownByte;
        }
        text += ColoredRuns(line);
        text += "\n";
    }
    const std::size_t shown = (used + COLUMNS * bytesPerCell - 1) / (COLUMNS * bytesPerCell) * COLUMNS * bytesPerCell;
    if (shown < letters.size())
        text += fmt::format("  {:04X}  {}\n", shown, Say("{} more bytes in no area", letters.size() - shown));
    return text + "\n  " +
           Say("one character is {}; lower case: free, '.': in no area", SayCount(bytesPerCell, "byte")) + "\n";
}

std::vector<std::string> Row(AREA_ID id, std::size_t offset, std::size_t length, std::size_t used) {
    const MARK& mark = MarkOf(id);
    return {Colored(mark.color, std::string(1, mark.letter)),
            id == AREA_ID::HEADER ? Say("Common header") : AreaTitle(id),
            fmt::format("{:04X}h", offset),
            Say("{:5} bytes", length),
            Say("{:5} used", used),
            Say("{:5} free", length - std::min(length, used))};
}

void Map(CSources& sources) {
    const SOURCE source = sources.TakeAll(1, true)[0];
    const CONTENTS contents = Open(source);
    const FRU& fru = contents.fru;
    if (Settings().json) {
        nlohmann::json areas = {
            {{"name", "header"}, {"offset", 0}, {"length", FruImage::HEADER_SIZE}, {"used", FruImage::HEADER_SIZE}}};
        for (const AREA& area : fru.areas)
            areas.push_back({{"name", AreaName(area.id)},
                             {"offset", area.offset},
                             {"length", area.length},
                             {"used", std::min(area.used, area.length)}});
        PrintJson({{"source", JsonSource(source)}, {"size", fru.bytes.size()}, {"areas", std::move(areas)}});
    } else {
        std::vector<std::vector<std::string>> rows = {
            Row(AREA_ID::HEADER, 0, FruImage::HEADER_SIZE, FruImage::HEADER_SIZE)};
        for (const AREA& area : fru.areas)
            rows.push_back(Row(area.id, area.offset, area.length, area.used));
        PrintText(fmt::format("{}  {}\n\n{}\n{}", Colored(COLOR::BOLD, ShownLabel(source)),
                              SayCount(fru.bytes.size(), "byte"), Picture(Letters(fru)), Table(rows)));
    }
    contents.RequireSound(false);
}

} // namespace

void AddMap(CLI::App& app) {
    CLI::App& command = NewCommand(app, "map", "Draw the device image: areas, used and free bytes",
                                   "  fructl map image.bin\n"
                                   "  fructl map --system");
    const auto sources = std::make_shared<CSources>(command, "[SOURCE]", "File; without one, the system's FRU");
    command.callback([sources] { Map(*sources); });
}

} // namespace Fructl
