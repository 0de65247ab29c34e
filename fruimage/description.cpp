#include "fruimage/description.h"

#include "fruimage/compose.h"
#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

/// No device has more, and a written number must not allocate without limit.
constexpr std::size_t MOST_BYTES = 0xFFFFFF;

struct PLACED {
    AREA_ID id;
    RANGE range;
    BYTES bytes;
};

using PLACES = std::vector<PLACED>;

/// The bytes of every area and where they go.
Result<PLACES> Place(const DESCRIPTION& description) {
    PLACES places;
    std::size_t position = HEADER_SIZE;
    for (const AREA_DESCRIPTION& area : description.areas) {
        Result<BYTES> bytes = ComposeArea(area);
        if (!bytes)
            return bytes.Error();
        const std::size_t offset = area.offset.value_or(RoundUp(position));
        if (area.id == AREA_ID::HEADER || offset == 0 || offset % UNIT != 0)
            return Refuse(REFUSAL::BAD_DESCRIPTION, area.id, Text("an area cannot be at ", PlaceText(offset)));
        if (offset > MAXIMUM_OFFSET)
            return Refuse(
                REFUSAL::NOT_ADDRESSABLE, area.id,
                Text("it would be at ", PlaceText(offset), ", the header reaches up to ", PlaceText(MAXIMUM_OFFSET)));
        if (bytes->empty() && !area.offset)
            return Refuse(REFUSAL::BAD_DESCRIPTION, area.id, "it has no content");
        const RANGE range{offset, bytes->size()};
        position = range.End();
        places.push_back({area.id, range, bytes.Take()});
    }
    return places;
}

/// Checks that no area comes twice and none overlaps another. @return the fault, or nothing
FAULT CheckPlaces(const DESCRIPTION& description, const PLACES& places) {
    const RANGE header{0, HEADER_SIZE};
    for (std::size_t first = 0; first < places.size(); ++first) {
        const PLACED& place = places[first];
        if (place.range.Overlaps(header))
            return Refuse(REFUSAL::BAD_DESCRIPTION, place.id, "it overlaps the common header");
        for (std::size_t second = 0; second < first; ++second) {
            if (places[second].id == place.id)
                return Refuse(REFUSAL::BAD_DESCRIPTION, place.id, "it is there twice");
            if (places[second].range.Overlaps(place.range))
                return Refuse(REFUSAL::BAD_DESCRIPTION, place.id,
                              Text("it overlaps the ", AreaName(places[second].id), " area"));
        }
    }
    for (const GAP_DESCRIPTION& gap : description.gaps) {
        const RANGE range{gap.offset, gap.bytes.size()};
        if (range.Overlaps(header) || gap.offset > MOST_BYTES ||
            std::any_of(places.begin(), places.end(), [&](const PLACED& one) { return one.range.Overlaps(range); }))
            return Refuse(REFUSAL::BAD_DESCRIPTION, AREA_ID::HEADER,
                          Text("the unused bytes at ", PlaceText(gap.offset), " are not unused"));
    }
    return std::nullopt;
}

/// Bytes up to the end of the last area or gap.
std::size_t NeededBytes(const DESCRIPTION& description, const PLACES& places) {
    std::size_t needed = HEADER_SIZE;
    for (const PLACED& place : places)
        needed = std::max(needed, place.bytes.empty() ? 0 : place.range.End());
    for (const GAP_DESCRIPTION& gap : description.gaps)
        needed = std::max(needed, gap.offset + gap.bytes.size());
    return needed;
}

/// Bytes that are not `fill`, from the first to the last.
void DescribeGap(const FRU& fru, const GAP& gap, DESCRIPTION& description) {
    const BYTE_VIEW bytes = fru.View({gap.offset, gap.length});
    const auto differs = [&](BYTE byte) { return byte != description.fill; };
    const auto first = std::find_if(bytes.begin(), bytes.end(), differs);
    if (first == bytes.end())
        return;
    const auto last = std::find_if(bytes.rbegin(), bytes.rend(), differs).base();
    description.gaps.push_back({gap.offset + static_cast<std::size_t>(first - bytes.begin()), BYTES(first, last)});
}

} // namespace

Result<BYTES> Build(const DESCRIPTION& description) {
    const Result<PLACES> places = Place(description);
    if (!places)
        return places.Error();
    if (auto error = CheckPlaces(description, *places))
        return *error;
    const std::size_t needed = NeededBytes(description, *places);
    const std::size_t size = description.size == 0 ? needed : description.size;
    if (needed > size || size > MOST_BYTES) {
        ERROR error = Refuse(REFUSAL::NO_ROOM, AREA_ID::HEADER,
                             Text("the image needs ", Count(needed, "byte"), ", and should have ", size));
        error.needed = needed;
        error.available = size;
        return error;
    }
    BYTES image(size, description.fill);
    BYTES header = {description.version, 0, 0, 0, 0, 0, description.pad, 0};
    for (const PLACED& place : *places) {
        header[static_cast<std::size_t>(place.id)] = static_cast<BYTE>(place.range.offset / UNIT);
        Copy(image, place.range.offset, place.bytes);
    }
    header[7] = ZeroChecksum(BYTE_VIEW(header).first(HEADER_SIZE - 1));
    Copy(image, 0, header);
    for (const GAP_DESCRIPTION& gap : description.gaps)
        Copy(image, gap.offset, gap.bytes);
    return image;
}

Result<DESCRIPTION> Describe(const FRU& fru) {
    DESCRIPTION description;
    if (fru.bytes.empty())
        return description;
    if (fru.state != STATE::FRU)
        return Refuse(REFUSAL::DAMAGED, AREA_ID::HEADER, "it is no FRU with a sound header");
    for (const FINDING& finding : fru.findings)
        if (finding.code == "areas-overlap")
            return Refuse(REFUSAL::DAMAGED, finding.area, finding.text);
    for (const AREA& area : fru.areas)
        if (area.IsInfo() && area.length == 0)
            return Refuse(REFUSAL::DAMAGED, area.id, "it begins past the end of the image");
    description.size = fru.bytes.size();
    description.version = fru.header[0];
    description.pad = fru.header[6];
    description.fill =
        !fru.gaps.empty() && fru.bytes[fru.gaps.back().offset + fru.gaps.back().length - 1] == 0xFF ? 0xFF : 0;
    for (const AREA& area : fru.areas)
        description.areas.push_back(DescribeArea(fru, area));
    std::sort(description.areas.begin(), description.areas.end(),
              [](const AREA_DESCRIPTION& a, const AREA_DESCRIPTION& b) { return *a.offset < *b.offset; });
    for (const GAP& gap : fru.gaps)
        DescribeGap(fru, gap, description);
    return description;
}

} // namespace FruImage
