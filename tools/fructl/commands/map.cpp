#include "tools/fructl/commands/commands.h"

#include "tools/fructl/open.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Fructl {

namespace {

constexpr std::size_t COLUMNS = 64;
constexpr std::size_t MAXIMUM_ROWS = 16;

struct MARK {
    FRU_AREA area;
    char letter; ///< a used byte; a free one is the letter in lower case
    COLOR color;
};
constexpr MARK MARKS[] = {{FRU_AREA_COMMON_HEADER, 'H', COLOR::BOLD}, {FRU_AREA_INTERNAL_USE, 'I', COLOR::MAGENTA},
                          {FRU_AREA_CHASSIS, 'C', COLOR::BLUE},       {FRU_AREA_BOARD, 'B', COLOR::GREEN},
                          {FRU_AREA_PRODUCT, 'P', COLOR::YELLOW},     {FRU_AREA_MULTIRECORD, 'M', COLOR::CYAN}};

const MARK& MarkOf(FRU_AREA area) {
    return *std::find_if(std::begin(MARKS), std::end(MARKS) - 1, [&](const MARK& mark) { return mark.area == area; });
}

/// One letter a byte: used, free, or of no area.
std::string Letters(const FRU& fru) {
    std::string letters(fru.size, '.');
    const auto fill = [&](std::size_t begin, std::size_t end, char letter) {
        for (std::size_t position = begin; position < std::min(end, letters.size()); ++position)
            letters[position] = letter;
    };
    fill(0, HEADER_SIZE, 'H');
    for (const AREA& area : fru.areas) {
        const char letter = MarkOf(area.id).letter;
        const std::size_t end = area.offset + area.bytes.size();
        fill(area.offset, end, letter);
        if (area.IsInfo()) // free bytes lie between the end marker and the checksum
            fill(end - 1 - std::min(area.Room(), area.bytes.size() - 1), end - 1, static_cast<char>(letter | 0x20));
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

/// One cell stands for several bytes of a large image, and shows the first of them that is used.
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
        text += fmt::format("  {:04X}  {} more bytes in no area\n", shown, letters.size() - shown);
    return text + fmt::format("\n  one character is {} byte{}; lower case: free, '.': in no area\n", bytesPerCell,
                              bytesPerCell == 1 ? "" : "s");
}

std::vector<std::string> Row(FRU_AREA id, std::size_t offset, std::size_t length, std::size_t used) {
    const MARK& mark = MarkOf(id);
    return {Colored(mark.color, std::string(1, mark.letter)),
            id == FRU_AREA_COMMON_HEADER ? "Common header" : AreaTitle(id),
            fmt::format("{:04X}h", offset),
            fmt::format("{:5} bytes", length),
            fmt::format("{:5} used", used),
            fmt::format("{:5} free", length - std::min(length, used))};
}

void Map(CSources& sources) {
    SOURCE source = sources.TakeAll(1, true)[0];
    CONTENTS contents = Open(source);
    if (source.kind == SOURCE::DEVICE && !contents.fru.IsDamaged())
        contents.fru = ParseImage(ReadDevice(source, WHOLE));
    const FRU& fru = contents.fru;
    if (Settings().json) {
        nlohmann::json areas = {{{"name", "header"}, {"offset", 0}, {"length", HEADER_SIZE}, {"used", HEADER_SIZE}}};
        for (const AREA& area : fru.areas)
            areas.push_back({{"name", AreaName(area.id)},
                             {"offset", area.offset},
                             {"length", area.bytes.size()},
                             {"used", std::min(area.used, area.bytes.size())}});
        PrintJson({{"source", JsonSource(source)}, {"size", fru.size}, {"areas", std::move(areas)}});
    } else {
        std::vector<std::vector<std::string>> rows = {Row(FRU_AREA_COMMON_HEADER, 0, HEADER_SIZE, HEADER_SIZE)};
        for (const AREA& area : fru.areas)
            rows.push_back(Row(area.id, area.offset, area.bytes.size(), area.used));
        PrintText(fmt::format("{}  {} bytes\n\n{}\n{}", Colored(COLOR::BOLD, source.label), fru.size,
                              Picture(Letters(fru)), Table(rows)));
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
