// Where areas go when they grow: the fewest moves, and the internal use area stays.
#include "fruimage/draft.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

bool IsBlankByte(BYTE byte) {
    return byte == 0 || byte == 0xFF;
}

/// Bytes closed to other areas: at least one unit, since the header can name an area whose first record is missing.
RANGE Taken(const DRAFT_AREA& area) {
    return {area.offset, std::max(area.Range().length, UNIT)};
}

class CLayout {
  public:
    explicit CLayout(DRAFT& draft) : m_draft(draft), m_imageSize(draft.fru.bytes.size()) {
        const std::size_t most = draft.limits.deviceSize == 0 ? MAXIMUM_DEVICE : draft.limits.deviceSize;
        m_limit = std::max(most, m_imageSize);
        for (DRAFT_AREA& area : draft.areas) {
            if (area.removed || area.ghost)
                continue;
            if (area.before && area.id == AREA_ID::INTERNAL_USE)
                m_internal = &area;
            (area.before ? m_old : m_new).push_back(&area);
        }
        std::sort(m_old.begin(), m_old.end(),
                  [](const DRAFT_AREA* a, const DRAFT_AREA* b) { return a->offset < b->offset; });
    }

    FAULT LayOut() {
        std::vector<DRAFT_AREA*> displaced = Push();
        displaced.insert(displaced.end(), m_new.begin(), m_new.end());
        for (DRAFT_AREA* area : displaced)
            if (FAULT fault = area->id == AREA_ID::INTERNAL_USE ? PlaceInternal(*area) : PlaceFreely(*area))
                return fault;
        for (const DRAFT_AREA* area : m_placed)
            if (FAULT fault = CheckPlace(*area))
                return fault;
        return CheckInternal();
    }

  private:
    /// Moves areas up as far as those before them have grown. @return those that do not fit before the internal use
    /// area
    std::vector<DRAFT_AREA*> Push() {
        std::vector<DRAFT_AREA*> displaced;
        std::size_t end = HEADER_SIZE;
        m_placed.clear();
        for (DRAFT_AREA* area : m_old) {
            if (area != m_internal) {
                area->offset = std::max(area->offset, RoundUp(end));
                if (m_internal && area->Range().Overlaps(m_internal->Range())) {
                    displaced.push_back(area);
                    continue;
                }
            }
            m_placed.push_back(area);
            end = std::max(end, Taken(*area).End());
        }
        return displaced;
    }

    bool IsFree(const RANGE& range) const {
        return !range.Overlaps({0, HEADER_SIZE}) &&
               std::none_of(m_placed.begin(), m_placed.end(),
                            [&](const auto* area) { return Taken(*area).Overlaps(range); });
    }

    /// Whether writing there destroys no byte of an area and none of unknown use.
    bool IsBlank(const RANGE& range) const {
        const BYTE_VIEW bytes = m_draft.fru.View(range);
        return std::all_of(bytes.begin(), bytes.end(), IsBlankByte) &&
               std::none_of(m_draft.areas.begin(), m_draft.areas.end(),
                            [&](const DRAFT_AREA& area) { return area.old.Overlaps(range); });
    }

    /// Ends of the placed areas, where free bytes begin; ascending.
    std::vector<std::size_t> Ends() const {
        std::vector<std::size_t> ends = {HEADER_SIZE};
        for (const DRAFT_AREA* area : m_placed)
            ends.push_back(RoundUp(Taken(*area).End()));
        std::sort(ends.begin(), ends.end());
        return ends;
    }

    bool FirstFit(DRAFT_AREA& area, bool blankOnly) {
        for (const std::size_t offset : Ends()) {
            const RANGE range{offset, area.bytes.size()};
            if (offset > MAXIMUM_OFFSET || range.End() > m_limit || !IsFree(range) || (blankOnly && !IsBlank(range)))
                continue;
            area.offset = offset;
            m_placed.push_back(&area);
            return true;
        }
        return false;
    }

    /// The first unused place; else directly behind the internal use area, or behind everything.
    FAULT PlaceFreely(DRAFT_AREA& area) {
        if (FirstFit(area, true) || FirstFit(area, false))
            return std::nullopt;
        area.offset = area.before && m_internal ? RoundUp(m_internal->Range().End()) : Ends().back();
        if (area.before)
            std::stable_sort(m_placed.begin(), m_placed.end(),
                             [](const DRAFT_AREA* a, const DRAFT_AREA* b) { return a->offset < b->offset; });
        const auto behind = std::find_if(m_placed.begin(), m_placed.end(), [&](const DRAFT_AREA* other) {
            return area.before && other->offset >= area.offset;
        });
        std::size_t end = area.Range().End();
        for (auto other = behind; other != m_placed.end(); ++other) {
            (*other)->offset = std::max((*other)->offset, RoundUp(end));
            end = Taken(**other).End();
        }
        m_placed.insert(behind, &area);
        return std::nullopt;
    }

    /// Places the internal use area at the end of unused bytes, since it ends where the next area begins.
    FAULT PlaceInternal(DRAFT_AREA& area) {
        std::vector<std::size_t> ends = Ends();
        const std::size_t last =
            m_draft.limits.deviceSize == 0 ? std::max(m_imageSize, ends.back() + area.bytes.size()) : m_limit;
        std::vector<std::size_t> starts = {last};
        for (const DRAFT_AREA* other : m_placed)
            starts.push_back(other->offset);
        std::sort(starts.begin(), starts.end());
        for (const std::size_t start : starts) {
            if (start < area.bytes.size() + HEADER_SIZE)
                continue;
            area.offset = (start - area.bytes.size()) / UNIT * UNIT;
            if (area.offset > MAXIMUM_OFFSET || !IsFree({area.offset, start - area.offset}))
                continue;
            area.bytes.resize(start - area.offset);
            m_placed.push_back(&area);
            return std::nullopt;
        }
        return Refuse(REFUSAL::NO_ROOM, area.id,
                      "there is no room for it in front of another area or of the image's end");
    }

    FAULT CheckPlace(const DRAFT_AREA& area) const {
        if (area.Range().End() > m_limit) {
            std::size_t needed = 0;
            for (const DRAFT_AREA* other : m_placed)
                needed = std::max(needed, other->Range().End());
            ERROR error = Refuse(REFUSAL::NO_ROOM, area.id,
                                 Text("the image would need ", needed, " bytes, the device has ", m_limit));
            error.needed = needed;
            error.available = m_limit;
            return error;
        }
        if (area.offset > MAXIMUM_OFFSET)
            return Refuse(REFUSAL::NOT_ADDRESSABLE, area.id,
                          Text("the ", AreaName(area.id), " area would be at ", PlaceText(area.offset),
                               ", the header reaches up to ", PlaceText(MAXIMUM_OFFSET)));
        return std::nullopt;
    }

    /// No byte tells the length of the internal use area: it reaches to the next area or the end of the image.
    FAULT CheckInternal() const {
        if (!m_internal)
            return std::nullopt;
        std::size_t end = m_imageSize;
        for (const DRAFT_AREA* area : m_placed)
            end = std::max(end, area->Range().End());
        for (const DRAFT_AREA& area : m_draft.areas)
            if (!area.removed && area.offset > m_internal->offset)
                end = std::min(end, area.offset);
        if (end == m_internal->Range().End())
            return std::nullopt;
        return Refuse(REFUSAL::FIXED_SIZE, AREA_ID::INTERNAL_USE,
                      Text("the internal use area would have ", end - m_internal->offset, " bytes instead of ",
                           m_internal->bytes.size(), ": it reaches up to the next area, or to the end"));
    }

    DRAFT& m_draft;
    std::size_t m_imageSize;
    std::size_t m_limit = 0;
    DRAFT_AREA* m_internal = nullptr;
    std::vector<DRAFT_AREA*> m_old;
    std::vector<DRAFT_AREA*> m_new;
    std::vector<DRAFT_AREA*> m_placed;
};

} // namespace

FAULT LayOut(DRAFT& draft) {
    for (DRAFT_AREA& area : draft.areas) {
        if (area.removed)
            continue;
        Result<BYTES> bytes = ComposeArea(area.description);
        if (!bytes)
            return bytes.Error();
        area.bytes = bytes.Take();
        if (!area.changed)
            area.bytes.resize(area.bytes.size() + area.zeroes);
    }
    return CLayout(draft).LayOut();
}

} // namespace FruImage
