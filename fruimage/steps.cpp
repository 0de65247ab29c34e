#include "fruimage/draft.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

/// Runs of differing bytes at most this far apart are one: another request would cost more bytes.
constexpr std::size_t NEAR = 8;

bool IsUsedBefore(const DRAFT& draft, const RANGE& range) {
    return range.Overlaps({0, draft.fru.state == STATE::FRU ? HEADER_SIZE : 0}) ||
           std::any_of(draft.areas.begin(), draft.areas.end(),
                       [&](const DRAFT_AREA& area) { return area.old.Overlaps(range); });
}

std::vector<RANGE> Join(const std::vector<RANGE>& ranges) {
    std::vector<RANGE> joined;
    for (const RANGE& range : ranges)
        if (!joined.empty() && range.offset - joined.back().End() <= NEAR)
            joined.back().length = range.End() - joined.back().offset;
        else
            joined.push_back(range);
    return joined;
}

bool HasMoved(const DRAFT_AREA& area) {
    return !area.before || area.offset != area.old.offset;
}

/// The differing bytes of an area, or of the header.
void AddRange(PLAN& plan, const DRAFT& draft, AREA_ID id, const RANGE& place, const std::string& what) {
    // Unread bytes may differ everywhere.
    const auto unread = [&](const GAP& gap) {
        return gap.content == GAP_CONTENT::UNREAD && place.Overlaps({gap.offset, gap.length});
    };
    std::vector<RANGE> differing;
    if (std::any_of(draft.fru.gaps.begin(), draft.fru.gaps.end(), unread))
        differing.push_back(place);
    else
        for (const RANGE& range : plan.changed)
            if (range.Overlaps(place)) {
                const std::size_t begin = std::max(range.offset, place.offset);
                differing.push_back({begin, std::min(range.End(), place.End()) - begin});
            }
    for (const RANGE& range : Join(differing)) {
        const BYTE_VIEW bytes = Slice(plan.bytes, range.offset, range.length);
        plan.steps.push_back({range.offset, {bytes.begin(), bytes.end()}, id, what, !IsUsedBefore(draft, range)});
    }
}

void NoteForeignBytes(PLAN& plan, const FRU& before, const DRAFT_AREA& area) {
    for (const GAP& gap : before.gaps) {
        const RANGE range{gap.offset, gap.length};
        if (!range.Overlaps(area.Range()) || gap.content == GAP_CONTENT::ZEROES || gap.content == GAP_CONTENT::ONES)
            continue;
        const std::size_t begin = std::max(range.offset, area.offset);
        const std::size_t end = std::min(range.End(), area.Range().End());
        plan.notes.push_back(Text("the ", AreaName(area.id), " area takes ", Count(end - begin, "byte"), " at ",
                                  PlaceText(begin), " that belong to no area, but may not be empty"));
    }
}

} // namespace

std::vector<RANGE> Differences(BYTE_VIEW before, BYTE_VIEW after) {
    std::vector<RANGE> ranges;
    for (std::size_t position = 0; position < after.size(); ++position) {
        if (position < before.size() && before[position] == after[position])
            continue;
        if (!ranges.empty() && ranges.back().End() == position)
            ++ranges.back().length;
        else
            ranges.push_back({position, 1});
    }
    return ranges;
}

void AddSteps(PLAN& plan, const FRU& before, const DRAFT& draft) {
    std::vector<const DRAFT_AREA*> order;
    for (const DRAFT_AREA& area : draft.areas)
        if (!area.removed && !area.ghost) {
            order.push_back(&area);
            NoteForeignBytes(plan, before, area);
        }
    // From the end: each area moves to bytes that the one behind it has left.
    std::sort(order.begin(), order.end(), [](const DRAFT_AREA* a, const DRAFT_AREA* b) {
        return HasMoved(*a) != HasMoved(*b) ? HasMoved(*a) : a->offset > b->offset;
    });
    for (const DRAFT_AREA* area : order)
        AddRange(plan, draft, area->id, area->Range(),
                 Text(AreaName(area->id), HasMoved(*area) ? " area at its new place " : " area at ",
                      PlaceText(area->offset)));
    AddRange(plan, draft, AREA_ID::HEADER, {0, HEADER_SIZE}, "common header");
}

} // namespace FruImage
