#include "tools/fructl/savefru.h"

#include "tools/fructl/compare.h"
#include "tools/fructl/files.h"
#include "tools/fructl/library.h"
#include "tools/fructl/session.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>

namespace Fructl {

namespace {

constexpr const char* BINARY_HINT = "--binary keeps everything";
constexpr std::string_view TITLE_KEY = "_FRU_TITLE";

[[noreturn]] void RefuseText(const std::string& output, const std::string& why) {
    throw CToolError(EXIT_REFUSED, output, "a text file cannot hold this FRU: " + why, BINARY_HINT);
}

std::string CleanTitle(std::string title) {
    std::erase_if(title, [](char character) { return character == '\'' || static_cast<UINT8>(character) < 0x20; });
    return title;
}

/// The text with another title in its line.
std::string WithTitle(std::string text, const std::string& title) {
    const std::size_t begin = text.find(TITLE_KEY);
    const std::size_t end = text.find_first_of("\r\n", begin);
    if (begin != std::string::npos && end != std::string::npos)
        text.replace(begin, end - begin, fmt::format("{}\t'{}'", TITLE_KEY, title));
    return text;
}

std::string Composed(const SOURCE& source, const FRU& fru, const TARGET& target) {
    const ADDRESS& address = source.address;
    TEXT_HEADER header;
    header.name = std::filesystem::path(target.path).filename().string();
    header.title = CleanTitle(target.title.empty() ? source.title : target.title);
    header.type = TypeText(address.type);
    header.deviceId = address.deviceId;
    header.controller = address.controller;
    header.lun = address.lun;
    header.bus = address.bus;
    header.address = address.deviceAddress;
    return ComposeFruText(header, fru);
}

std::string TextOf(const CONTENTS& contents, const FRU& fru, const TARGET& target) {
    if (contents.source.kind != SOURCE::TEXT)
        return Composed(contents.source, fru, target);
    std::string text = EditFruText(contents.text, fru);
    return target.title.empty() ? text : WithTitle(std::move(text), CleanTitle(target.title));
}

/// Checks that the library loads the file with the right contents.
void CheckText(const std::string& text, const std::string& path, const FRU& expected, const std::string& output) {
    const FRU_TEXT read = ReadFruText(text, Settings().platform == FRU_PLATFORM_MBMC);
    if (!read.faults.empty())
        RefuseText(output, read.faults.front().text);
    std::string lost;
    for (const DIFFERENCE& difference : Compare(expected, FruImage::Parse(read.image)))
        lost += (lost.empty() ? "" : ", ") + difference.Name();
    if (!lost.empty())
        RefuseText(output, lost);
    try {
        RunSession(output, [&](const PROGRESS&) {
            CLibrary(CLibrary::NO_BMC).LoadFile(path);
            return nlohmann::json();
        });
    } catch (const CToolError& error) {
        std::string why = error.m_why;
        if (const std::size_t at = why.find(path); at != std::string::npos)
            why.replace(at, path.size(), output);
        RefuseText(output, why);
    }
}

void SaveText(const CONTENTS& contents, const FRU& fru, const TARGET& target) {
    if (!fru.IsSound())
        throw CToolError(EXIT_DAMAGED, contents.source.label, ProblemText(fru),
                         "--binary keeps everything as it is, 'fructl repair' puts right what leaves no doubt");
    const std::string obstacle = TextObstacle(fru);
    if (!obstacle.empty() && !Settings().force)
        RefuseText(target.path, obstacle);
    const std::string text = TextOf(contents, fru, target);
    const CReplacement file(target.path);
    file.Write(BYTES(text.begin(), text.end()));
    CheckText(text, file.Path().string(), fru, target.path);
    file.Finish();
}

} // namespace

void SaveFru(const CONTENTS& contents, const FRU& fru, const TARGET& target) {
    if (!target.binary)
        return SaveText(contents, fru, target);
    BYTES bytes = fru.bytes;
    // A text file has the areas of a device, not its size.
    if (contents.source.kind == SOURCE::TEXT)
        bytes.resize(FruImage::RoundUp(bytes.size()));
    WriteFile(target.path, bytes);
}

} // namespace Fructl
