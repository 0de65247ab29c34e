#include "tools/fructl/titles.h"

#include "tools/fructl/files.h"
#include "tools/fructl/languages.h"
#include "tools/fructl/settings.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/toolerror.h"

#include "common/stringid.h"
#include "tools/strc/tablefile.h"
#include "tools/strc/utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace Fructl {

namespace {

namespace fs = std::filesystem;

using Frudata_Private::TEXT_TABLE;

constexpr const char* TABLE_PATH = "frudata/str/frudata.str";

/// The numbers of an area's texts: its own, its first field's (the others follow) and its custom fields'.
constexpr struct {
    AREA_ID area;
    std::size_t title;
    std::size_t firstField;
    std::size_t custom;
} FIELD_NUMBERS[] = {
    {AREA_ID::INTERNAL_USE, STRING_AREA_INTERNAL_USE, 0, 0},
    {AREA_ID::MULTIRECORD, STRING_AREA_MULTIRECORD, 0, 0},
    {AREA_ID::CHASSIS, STRING_AREA_CHASSIS, STRING_CHASSIS_TYPE, STRING_CHASSIS_CUSTOM_FIELD},
    {AREA_ID::BOARD, STRING_AREA_BOARD, STRING_BOARD_MFG_DATE_TIME, STRING_BOARD_CUSTOM_FIELD},
    {AREA_ID::PRODUCT, STRING_AREA_PRODUCT, STRING_PRODUCT_MANUFACTURER_NAME, STRING_PRODUCT_CUSTOM_FIELD}};

/// The texts of this run's language, or none. Reads them itself: asking the library would need a session.
TEXT_TABLE ReadTexts() {
    TEXT_TABLE texts;
    const fs::path file = DataDirectory() / TextDirectory(Settings().language) / TABLE_PATH;
    try {
        const BYTES bytes = ReadFile(file.string());
        if (!Frudata_Private::ReadCompiledTable(std::string(bytes.begin(), bytes.end()), texts) &&
            texts.size() > STRING_PRODUCT_CUSTOM_FIELD)
            return texts;
    } catch (const CToolError&) {
        // Without texts the names of the standard serve.
    }
    Note(fmt::format("no texts for {}: set FRUDATA_DATADIR to the directory that holds '{}'", Settings().language,
                     TextDirectory(Settings().language)));
    return {};
}

/// A text by its number, or `fallback`.
std::string Text(std::size_t number, const char* fallback) {
    static const TEXT_TABLE texts = ReadTexts();
    const bool isThere = number < texts.size() && !texts[number].empty();
    return isThere ? Frudata_Private::EncodeUtf8(texts[number]) : std::string(fallback);
}

const auto& NumbersOf(AREA_ID area) {
    return *std::find_if(std::begin(FIELD_NUMBERS), std::end(FIELD_NUMBERS) - 1,
                         [&](const auto& row) { return row.area == area; });
}

} // namespace

fs::path DataDirectory() {
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    const char* given = std::getenv("FRUDATA_DATADIR");
    for (const fs::path& directory : {fs::path(given ? given : ""), program / "..", program / "../share/frudata"})
        if (!directory.empty() && fs::exists(directory / TextDirectory(Languages().front()) / TABLE_PATH, ignored))
            return directory;
    return {};
}

std::string AreaTitle(AREA_ID area) {
    return Text(NumbersOf(area).title, AreaRow(area).title);
}

std::string Title(const AREA_ROW& row, std::size_t position) {
    const auto& numbers = NumbersOf(row.id);
    const std::size_t fixed = row.fields.size();
    if (position < fixed)
        return Text(numbers.firstField + position, row.fields[position].title);
    return fmt::format("{} {}", Text(numbers.custom, "Custom field"), position - fixed + 1);
}

} // namespace Fructl
