#include "fruimage/compose.h"
#include "fruimage/mending.h"
#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

constexpr std::size_t PAD = 6;
constexpr std::size_t CHECKSUM = 7;

/// A header that could be the right one.
struct GUESS {
    BYTES header;
    bool vouched = true;  ///< the search found an area at every offset
    bool dropped = false; ///< it omits an offset of the damaged header
};

ERROR Ambiguous(AREA_ID area, std::string text) {
    return Refuse(REFUSAL::AMBIGUOUS, area, std::move(text), "nothing is guessed");
}

/// Whether the damaged header's offset of an area that the search did not find may still be right.
bool MayBeAt(const FRU& fru, const AREA_ROW& row, std::size_t offset) {
    if (offset == 0 || offset >= fru.bytes.size())
        return false;
    const bool inside = std::any_of(fru.areas.begin(), fru.areas.end(), [&](const AREA& area) {
        return area.id != row.id && area.id != AREA_ID::INTERNAL_USE && RANGE{offset, 1}.Overlaps(area.Range());
    });
    const bool version = row.id == AREA_ID::MULTIRECORD ? (Slice(fru.bytes, offset + 1, 1).size() == 1 &&
                                                           (fru.bytes[offset + 1] & 0x7F) == RECORD_FORMAT)
                                                        : fru.bytes[offset] == FORMAT_VERSION;
    return !inside && version;
}

GUESS Guess(const FRU& fru) {
    GUESS guess{.header = fru.header};
    if (Version(guess.header[0]) != FORMAT_VERSION)
        guess.header[0] = FORMAT_VERSION;
    for (const AREA_ROW& row : Areas()) {
        BYTE& byte = guess.header[static_cast<std::size_t>(row.id)];
        const AREA* found = row.id == AREA_ID::INTERNAL_USE ? nullptr : fru.Find(row.id);
        if (found)
            byte = static_cast<BYTE>(found->offset / UNIT);
        else if (MayBeAt(fru, row, byte * UNIT))
            guess.vouched = false;
        else {
            guess.dropped = guess.dropped || byte != 0;
            byte = 0;
        }
    }
    return guess;
}

BYTE Sum(const GUESS& guess) {
    return ZeroChecksum(BYTE_VIEW(guess.header).first(CHECKSUM));
}

/// Whether there are bytes that could hold an area which the search cannot see.
const GAP* UnknownBytes(const FRU& fru) {
    const auto gap = std::find_if(fru.gaps.begin(), fru.gaps.end(), [](const GAP& one) {
        return one.content == GAP_CONTENT::OTHER || one.content == GAP_CONTENT::UNREAD;
    });
    return gap == fru.gaps.end() ? nullptr : &*gap;
}

/// The checksum vouches for an offset of the internal use area that makes it right.
bool SolveInternal(const FRU& fru, GUESS& guess) {
    GUESS solved = guess;
    solved.header[1] = 0;
    solved.header[1] = static_cast<BYTE>(Sum(solved) - fru.header[CHECKSUM]);
    if (solved.header[1] == 0 || !MayBeAt(fru, AreaRow(AREA_ID::INTERNAL_USE), solved.header[1] * UNIT))
        return false;
    guess = solved;
    return true;
}

/// Whether two of its areas are at one place.
bool HasDoubles(const GUESS& guess) {
    for (std::size_t first = 1; first < PAD; ++first)
        for (std::size_t second = first + 1; second < PAD; ++second)
            if (guess.header[first] != 0 && guess.header[first] == guess.header[second])
                return true;
    return false;
}

/// Whether the checksum of the damaged header agrees with the guess, or is the only thing that does not.
bool IsVouchedFor(const FRU& fru, GUESS& guess) {
    const BYTE pad = guess.header[PAD];
    if (Sum(guess) == fru.header[CHECKSUM])
        return true;
    guess.header[PAD] = 0;
    if (Sum(guess) == fru.header[CHECKSUM])
        return true;
    if (guess.header[1] == 0 && guess.dropped && SolveInternal(fru, guess))
        return true;
    guess.header[PAD] = pad;
    return std::equal(guess.header.begin(), guess.header.begin() + CHECKSUM, fru.header.begin());
}

/// Why the guess is not certain: an area is missing from it.
FAULT Doubt(const FRU& fru, GUESS& guess) {
    if (HasDoubles(guess) || (fru.candidates.empty() && !IsVouchedFor(fru, guess)))
        return Refuse(REFUSAL::NOTHING_TO_DO, AREA_ID::HEADER, "no area was found that a header could name");
    if (IsVouchedFor(fru, guess))
        return std::nullopt;
    guess.header[PAD] = 0;
    if (!guess.vouched)
        return Ambiguous(AREA_ID::HEADER,
                         "the header names an area that was not found, and is wrong elsewhere: there are two "
                         "candidates, with that area and without it");
    if (const GAP* gap = UnknownBytes(fru))
        return Ambiguous(AREA_ID::HEADER,
                         Text("the bytes at ", PlaceText(gap->offset),
                              " may be an area that nothing shows, such as the internal use area, or none"));
    return std::nullopt;
}

} // namespace

FAULT MendHeader(MENDING& mending, const FRU& fru) {
    for (const FINDING& finding : fru.findings)
        if (finding.code == "area-ambiguous")
            return Ambiguous(finding.area, Text("the ", AreaName(finding.area), " area: ", finding.text));
    if (fru.candidates.empty() && Version(fru.header[0]) != FORMAT_VERSION)
        return std::nullopt;
    GUESS guess = Guess(fru);
    if (FAULT fault = Doubt(fru, guess))
        return fault;
    guess.header[CHECKSUM] = Sum(guess);
    mending.Put(AREA_ID::HEADER, 0, guess.header,
                Text("common header: ", Hex(fru.header), " becomes ", Hex(guess.header)));
    return std::nullopt;
}

FAULT MendOffset(MENDING& mending, const FRU& fru, const AREA& area) {
    FRU search;
    search.bytes = fru.bytes;
    search.header = BYTES(HEADER_SIZE);
    SearchAreas(search);
    std::vector<std::size_t> places;
    for (const CANDIDATE& candidate : search.candidates) {
        const RANGE range{candidate.offset, candidate.length};
        const bool taken = std::any_of(fru.areas.begin(), fru.areas.end(), [&](const AREA& other) {
            return other.id != area.id && range.Overlaps(other.Range());
        });
        if (candidate.id == area.id && !taken)
            places.push_back(candidate.offset);
    }
    if (places.size() > 1)
        return Ambiguous(area.id, Text("the ", AreaName(area.id), " area may be at ", PlaceText(places[0]), " or at ",
                                       PlaceText(places[1])));
    const std::size_t place = places.empty() ? 0 : places[0];
    const auto byte = static_cast<BYTE>(place / UNIT);
    mending.Put(AREA_ID::HEADER, static_cast<std::size_t>(area.id), {&byte, 1},
                Text("the ", AreaName(area.id), " area at ", PlaceText(area.offset),
                     " lies in another area: ", place == 0 ? "there is none" : "it was found at " + PlaceText(place)));
    mending.PutChecksum(AREA_ID::HEADER, {0, HEADER_SIZE}, CHECKSUM, "common header: ");
    return std::nullopt;
}

} // namespace FruImage
