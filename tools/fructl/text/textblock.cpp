#include "tools/fructl/text/textblock.h"

#include "tools/fructl/text/textkeys.h"

#include <algorithm>

namespace Fructl {

namespace {

using namespace FruImage;

constexpr std::size_t BYTES_PER_LINE = 16;

BYTES Copy(BYTE_VIEW bytes) {
    return {bytes.begin(), bytes.end()};
}

void AddRows(std::vector<BLOCK_ITEM>& items, BYTE_VIEW bytes) {
    for (std::size_t offset = 0; offset < bytes.size(); offset += BYTES_PER_LINE)
        items.push_back({Copy(Slice(bytes, offset, BYTES_PER_LINE)), false, {}});
}

void AddBytes(std::vector<BLOCK_ITEM>& items, BYTE_VIEW bytes) {
    for (const BYTE byte : bytes)
        items.push_back({{byte}, false, {}});
}

/// A comment tells a value that has no quoted form.
BLOCK_ITEM ValueItem(const FIELD& field) {
    if (field.encoding == ENCODING::TEXT && CanBeQuoted(field.bytes))
        return {field.bytes, true, {}};
    return {field.bytes, false, field.encoding == ENCODING::BINARY ? std::string() : field.text};
}

void AddInfoArea(std::vector<BLOCK_ITEM>& items, const AREA& area, BYTE_VIEW block) {
    const AREA_ROW& row = AreaRow(area.id);
    AddBytes(items, block.first(std::min<std::size_t>(3, block.size())));
    std::size_t position = std::min<std::size_t>(3, block.size());
    for (const FIELD& field : area.fields) {
        if (field.kind == FIELD_KIND::CHASSIS_TYPE)
            continue; // the third byte
        if (field.kind == FIELD_KIND::TEXT)
            items.push_back({{field.typeLength}, false, {}});
        if (!field.bytes.empty())
            items.push_back(field.kind == FIELD_KIND::TEXT ? ValueItem(field) : BLOCK_ITEM{field.bytes, false, {}});
        position = field.offset - area.offset + field.bytes.size();
    }
    position = std::min(std::max(position, row.headerLength), block.size());
    const std::size_t marker = position < block.size() ? 1 : 0;
    AddBytes(items, block.subspan(position, marker));
    AddRows(items, block.subspan(position + marker));
}

} // namespace

BYTES BlockBytes(const FRU& fru, const AREA& area) {
    const BYTE_VIEW bytes = fru.View({area.offset, area.length});
    if (!AreaRow(area.id).IsInfo() || area.used == 0 || area.used >= bytes.size() + 1)
        return Copy(bytes);
    // `used` counts the checksum, which stands behind the padding.
    const std::size_t marker = area.used - 1;
    const bool implied = bytes.back() == ZeroChecksum(bytes.first(bytes.size() - 1)) &&
                         IsFilledWith(bytes.subspan(marker, bytes.size() - 1 - marker), 0);
    return Copy(implied ? bytes.first(marker) : bytes);
}

std::vector<BLOCK_ITEM> BlockItems(const FRU& fru, const AREA& area) {
    const BYTES block = BlockBytes(fru, area);
    std::vector<BLOCK_ITEM> items;
    if (AreaRow(area.id).IsInfo()) {
        AddInfoArea(items, area, block);
    } else if (area.id == AREA_ID::MULTIRECORD) {
        for (const RECORD& record : area.records) {
            AddBytes(items, record.header);
            AddRows(items, record.data);
        }
    } else {
        AddRows(items, block);
    }
    return items;
}

std::vector<BLOCK_ITEM> HeaderItems(const FRU& fru) {
    std::vector<BLOCK_ITEM> items;
    AddBytes(items, fru.header);
    return items;
}

bool CanBeQuoted(BYTE_VIEW bytes) {
    const std::string text(bytes.begin(), bytes.end());
    // A reader looks for keys inside quotes, too.
    for (const std::string_view word : {COMMENT, TAG, std::string_view("_FRU")})
        if (text.find(word) != std::string::npos)
            return false;
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return character >= ' ' && character <= '~' && character != QUOTE; });
}

std::string ItemCode(BYTE_VIEW bytes, bool quoted) {
    return quoted ? QUOTE + std::string(bytes.begin(), bytes.end()) + QUOTE : Hex(bytes);
}

} // namespace Fructl
