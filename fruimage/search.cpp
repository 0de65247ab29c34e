#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

/// A place where an area begins, and the areas that it could be.
struct PLACE {
    std::size_t offset;
    std::vector<AREA> fits;
};

void FindInfoAreas(BYTE_VIEW image, PLACE& place) {
    const BYTE_VIEW start = Slice(image, place.offset, 2);
    if (start.size() < 2 || start[0] != FORMAT_VERSION || start[1] == 0)
        return;
    const BYTE_VIEW bytes = Slice(image, place.offset, start[1] * UNIT);
    if (bytes.size() < start[1] * UNIT || ZeroChecksum(bytes) != 0)
        return;
    for (const AREA_ROW& row : Areas()) {
        FINDINGS findings;
        if (!row.IsInfo())
            continue;
        AREA area = ReadInfoArea(row, image, place.offset, place.offset + bytes.size(), findings);
        if (!HasDamage(findings) && IsPlausible(area))
            place.fits.push_back(std::move(area));
    }
}

void FindRecords(BYTE_VIEW image, std::size_t& chainEnd, PLACE& place) {
    const BYTE_VIEW header = Slice(image, place.offset, RECORD_HEADER_SIZE);
    // Inside a chain, a record that begins at a whole unit is no second chain.
    if (place.offset < chainEnd || header.size() < RECORD_HEADER_SIZE || (header[1] & 0x7F) != RECORD_FORMAT ||
        ZeroChecksum(header) != 0)
        return;
    FINDINGS findings;
    AREA area = ReadRecords(image, place.offset, findings);
    if (!IsChain(area))
        return;
    chainEnd = area.offset + area.length;
    place.fits.push_back(std::move(area));
}

std::vector<PLACE> FindPlaces(BYTE_VIEW image) {
    std::vector<PLACE> places;
    std::size_t chainEnd = 0;
    for (std::size_t offset = HEADER_SIZE; offset < image.size() && offset <= MAXIMUM_OFFSET; offset += UNIT) {
        PLACE place{offset, {}};
        FindInfoAreas(image, place);
        FindRecords(image, chainEnd, place);
        if (!place.fits.empty())
            places.push_back(std::move(place));
    }
    return places;
}

void Drop(std::vector<PLACE>& places) {
    places.erase(std::remove_if(places.begin(), places.end(), [](const PLACE& place) { return place.fits.empty(); }),
                 places.end());
}

/// Takes the area and drops what it rules out: its kind elsewhere, and candidates inside it.
void Take(FRU& fru, std::vector<PLACE>& places, AREA area) {
    area.certain = false;
    for (PLACE& place : places)
        place.fits.erase(std::remove_if(place.fits.begin(), place.fits.end(),
                                        [&](const AREA& other) {
                                            return other.id == area.id || other.Range().Overlaps(area.Range());
                                        }),
                         place.fits.end());
    Drop(places);
    Note(fru.findings, "area-found", area.id, area.offset,
         Text("found at ", PlaceText(area.offset), ", ", Count(area.length, "byte"),
              "; the header does not vouch for it"));
    fru.areas.push_back(std::move(area));
}

bool IsNamed(const FRU& fru, const AREA& area) {
    return fru.header[static_cast<std::size_t>(area.id)] * UNIT == area.offset;
}

/// A place that the header names for the same area: two witnesses agree.
const AREA* FindNamed(const FRU& fru, const std::vector<PLACE>& places) {
    for (const PLACE& place : places)
        for (const AREA& area : place.fits)
            if (IsNamed(fru, area))
                return &area;
    return nullptr;
}

/// An area that fits one place only, which no other area fits.
const AREA* FindOnly(const std::vector<PLACE>& places) {
    for (const PLACE& place : places) {
        const auto same = [&](const PLACE& other) {
            return other.fits.size() == 1 && other.fits[0].id == place.fits[0].id;
        };
        if (place.fits.size() == 1 && std::count_if(places.begin(), places.end(), same) == 1)
            return &place.fits.front();
    }
    return nullptr;
}

/// Of several, the one that makes the checksum of the damaged header right.
const AREA* FindVouched(const FRU& fru, const std::vector<PLACE>& places) {
    const AREA* vouched = nullptr;
    for (const PLACE& place : places)
        for (const AREA& area : place.fits) {
            BYTES header = fru.header;
            for (const AREA& found : fru.areas)
                header[static_cast<std::size_t>(found.id)] = static_cast<BYTE>(found.offset / UNIT);
            header[static_cast<std::size_t>(area.id)] = static_cast<BYTE>(area.offset / UNIT);
            if (ZeroChecksum(header) != 0)
                continue;
            if (vouched)
                return nullptr;
            vouched = &area;
        }
    return vouched;
}

/// "008h", and the other areas possible there.
std::string PlaceAndRivals(const PLACE& place, AREA_ID id) {
    std::string text = PlaceText(place.offset);
    for (const AREA& other : place.fits)
        if (other.id != id)
            text += Text(" (where the ", AreaName(other.id), " area fits, too)");
    return text;
}

void ReportAmbiguous(FRU& fru, const std::vector<PLACE>& places) {
    for (const AREA_ROW& row : Areas()) {
        std::string where;
        std::size_t first = 0;
        for (const PLACE& place : places) {
            if (std::none_of(place.fits.begin(), place.fits.end(), [&](const AREA& area) { return area.id == row.id; }))
                continue;
            first = where.empty() ? place.offset : first;
            where += (where.empty() ? "" : " or ") + PlaceAndRivals(place, row.id);
        }
        if (!where.empty())
            Damage(fru.findings, "area-ambiguous", row.id, first, "it may be at " + where);
    }
}

/// The search cannot see an internal use area, whose format is its maker's: only the header tells of it.
void AddInternalUse(FRU& fru) {
    const std::size_t offset = fru.header[1] * UNIT;
    const auto holds = [&](const AREA& area) { return RANGE{offset, 1}.Overlaps(area.Range()); };
    if (offset == 0 || offset >= fru.bytes.size() || std::any_of(fru.areas.begin(), fru.areas.end(), holds) ||
        Version(fru.bytes[offset]) != FORMAT_VERSION)
        return;
    AREA area;
    area.id = AREA_ID::INTERNAL_USE;
    area.certain = false;
    area.offset = offset;
    Note(fru.findings, "area-found", area.id, offset,
         Text("at ", PlaceText(offset), " by the damaged header alone; nothing else tells"));
    fru.areas.push_back(std::move(area));
}

} // namespace

bool IsPlausible(const AREA& area) {
    if (!area.ended || area.fields.size() < area.Row().fields.size() || LanguageName(area.language).empty())
        return false;
    return area.id != AREA_ID::CHASSIS || !ChassisTypeName(area.fields[0].bytes[0]).empty();
}

void SearchAreas(FRU& fru) {
    std::vector<PLACE> places = FindPlaces(fru.bytes);
    for (const PLACE& place : places)
        for (const AREA& area : place.fits)
            fru.candidates.push_back({area.id, area.offset, area.length, IsNamed(fru, area)});
    while (const AREA* area = FindNamed(fru, places))
        Take(fru, places, *area);
    while (const AREA* area = FindOnly(places))
        Take(fru, places, *area);
    if (const AREA* area = FindVouched(fru, places))
        Take(fru, places, *area);
    while (const AREA* area = FindOnly(places))
        Take(fru, places, *area);
    ReportAmbiguous(fru, places);
    if (!fru.candidates.empty())
        AddInternalUse(fru);
    std::sort(fru.areas.begin(), fru.areas.end(), [](const AREA& a, const AREA& b) { return a.id < b.id; });
}

} // namespace FruImage
