// A FRU text file from nothing.
#include "tools/fructl/text/frutext.h"
#include "tools/fructl/text/textblock.h"
#include "tools/fructl/text/textkeys.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

using namespace FruImage;

constexpr std::string_view FORMAT_VERSION = "1.50";
constexpr std::string_view IPMI_VERSION = "1.00";

/// The text without characters that quotes cannot hold.
std::string Quotable(std::string text) {
    std::erase_if(text,
                  [](char character) { return character == QUOTE || static_cast<unsigned char>(character) < ' '; });
    for (std::size_t at = text.find(COMMENT); at != std::string::npos; at = text.find(COMMENT))
        text.erase(at, 1);
    return text;
}

/// Firmware keeps its version in the last two bytes of the internal use area.
std::string InternalVersion(const FRU& fru) {
    const AREA* area = fru.Find(AREA_ID::INTERNAL_USE);
    const BYTE_VIEW bytes = area ? fru.View({area->offset, area->length}) : BYTE_VIEW();
    if (bytes.size() < 2)
        return "0.00";
    return fmt::format("{:X}.{:02X}", bytes[bytes.size() - 2], bytes.back());
}

std::size_t ImageLength(const FRU& fru) {
    std::size_t end = HEADER_SIZE;
    for (const AREA& area : fru.areas)
        end = std::max(end, area.offset + area.length);
    return end;
}

std::string Block(AREA_ID area, const std::vector<BLOCK_ITEM>& items) {
    std::string text = fmt::format("\n{}\n", AreaTag(area));
    for (const BLOCK_ITEM& item : items)
        text += fmt::format("{}{}\n", ItemCode(item.bytes, item.quoted),
                            item.comment.empty() ? "" : fmt::format("  {} {}", COMMENT, item.comment));
    return text;
}

} // namespace

std::string ComposeFruText(const TEXT_HEADER& header, const FRU& image) {
    std::string text = fmt::format("_LF_NAME\t'{}'\n_LF_VERSION\t'{}'\n_LF_FMT_VER\t'{}'\n_IPMI_VERSION\t'{}'\n\n",
                                   Quotable(header.name), InternalVersion(image), FORMAT_VERSION, IPMI_VERSION);
    text += fmt::format("_FRU (\n_FRU_TITLE\t'{}'\n_START_ADDR\t0000\n_DATA_LEN\t{:04X}\n", Quotable(header.title),
                        ImageLength(image));
    text += fmt::format("_NVS_TYPE\t'{}'\n_DEV_ID\t\t{:02X}\n_DEV_CNTR\t{:02X}\n_NVS_LUN\t{:02X}\n_DEV_BUS\t{:02X}\n"
                        "_DEV_ADDRESS\t{:02X}\n",
                        header.type, header.deviceId, header.controller, header.lun, header.bus, header.address);
    text += Block(AREA_ID::HEADER, HeaderItems(image));
    for (const AREA& area : image.areas)
        text += Block(area.id, BlockItems(image, area));
    return text + ")\n";
}

std::string TextObstacle(const FRU& image) {
    for (const AREA& area : image.areas) {
        const std::size_t length = BlockBytes(image, area).size();
        if (length > MAXIMUM_BLOCK)
            return fmt::format("{}: its {} bytes are more than the {} of a block", AreaName(area.id), length,
                               MAXIMUM_BLOCK);
        if (area.id == AREA_ID::MULTIRECORD && length < RECORD_HEADER_SIZE)
            return "multirecord: it has no record";
    }
    for (const GAP& gap : image.gaps)
        if (const BYTE_VIEW bytes = image.View({gap.offset, gap.length});
            !IsFilledWith(bytes, 0) && !IsFilledWith(bytes, 0xFF))
            return fmt::format("the {} bytes at {:03X}h belong to no area and are not empty", gap.length, gap.offset);
    return {};
}

} // namespace Fructl
