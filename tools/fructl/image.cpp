#include "tools/fructl/image.h"

#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

void Put(BYTES& image, std::size_t offset, BYTE_VIEW bytes) {
    image.resize(std::max(image.size(), offset + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// Where the first of the areas behind `area` begins; 0 where there is none.
std::size_t NextOffset(const FRU& fru, const AREA& area) {
    std::size_t next = 0;
    for (const AREA& other : fru.areas)
        if (other.offset > area.offset && (next == 0 || other.offset < next))
            next = other.offset;
    return next;
}

} // namespace

BYTES ComposeImage(const FRU& fru, const std::string& name) {
    BYTES image = fru.header;
    for (const AREA& area : fru.areas) {
        const std::size_t next = NextOffset(fru, area);
        if (next != 0 && area.offset + area.bytes.size() > next)
            throw CToolError(EXIT_REFUSED, name,
                             fmt::format("the {} area has {} bytes, its header leaves {} for it", AreaName(area.id),
                                         area.bytes.size(), next - area.offset),
                             "a binary image needs areas that fit the offsets of the common header");
        if (area.id == FRU_AREA_INTERNAL_USE && area.bytes.size() != InternalUseLength(fru.header))
            throw CToolError(EXIT_REFUSED, name,
                             fmt::format("the internal use area has {} bytes, its header says {}", area.bytes.size(),
                                         InternalUseLength(fru.header)));
        Put(image, area.offset, area.bytes);
    }
    image.resize((image.size() + OFFSET_UNIT - 1) / OFFSET_UNIT * OFFSET_UNIT);
    return image;
}

std::string PackingProblem(const FRU& fru) {
    std::size_t offset = HEADER_SIZE;
    for (const AREA& area : fru.areas) {
        if (area.offset != offset)
            return fmt::format("the {} area lies at {:03X}h, not at {:03X}h behind the area before it",
                               AreaName(area.id), area.offset, offset);
        offset += area.bytes.size();
    }
    return {};
}

BYTES PackImage(const FRU& fru) {
    BYTES image = fru.header;
    for (const AREA& area : fru.areas) {
        image[area.Row().headerByte] = static_cast<UINT8>(image.size() / OFFSET_UNIT);
        Put(image, image.size(), area.bytes);
    }
    image[HEADER_SIZE - 1] = ZeroChecksum(BYTE_VIEW(image).first(HEADER_SIZE - 1));
    return image;
}

BYTES UnpackImage(BYTES original, const FRU& fru, BYTE_VIEW packed, const std::string& name) {
    const FRU changed = ParseImage(packed);
    if (changed.IsDamaged())
        throw CToolError(EXIT_REFUSED, name, "the changed contents are not sound: " + changed.ProblemText());
    for (const AREA& area : changed.areas) {
        const AREA& old = *fru.Find(area.id);
        const std::size_t next = NextOffset(fru, old);
        if (next != 0 && old.offset + area.bytes.size() > next)
            throw CToolError(EXIT_REFUSED, name,
                             fmt::format("the {} area would have {} bytes, there is room for {}", AreaName(area.id),
                                         area.bytes.size(), next - old.offset));
        Put(original, old.offset, area.bytes);
    }
    return original;
}

} // namespace Fructl
