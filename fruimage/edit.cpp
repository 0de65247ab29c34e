#include "fruimage/edit.h"

#include "fruimage/draft.h"
#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

constexpr BYTE UNKNOWN_CHASSIS = 2;

/// Bytes that no other area has. A damaged area may claim bytes of others, or none.
std::size_t Extent(const AREA& area) {
    if (!area.damaged)
        return area.length;
    return area.length == 0 && area.IsInfo() ? area.room : std::min(area.length, area.room);
}

/// Whether it begins inside an area that is sound.
bool IsGhost(const FRU& fru, const AREA& area) {
    const auto holds = [&](const AREA& other) {
        return other.id != area.id && !other.damaged && RANGE{area.offset, 1}.Overlaps(other.Range());
    };
    return area.damaged && (area.offset < HEADER_SIZE || area.offset >= fru.bytes.size() ||
                            std::any_of(fru.areas.begin(), fru.areas.end(), holds));
}

DRAFT_AREA DraftOf(const FRU& fru, const AREA& area) {
    DRAFT_AREA draft;
    draft.id = area.id;
    draft.before = &area;
    draft.ghost = IsGhost(fru, area);
    draft.offset = area.offset;
    draft.old = {area.offset, draft.ghost ? 0 : Extent(area)};
    draft.description = DescribeArea(fru, area);
    if (draft.old.length != area.length) {
        const BYTE_VIEW bytes = fru.View(draft.old);
        draft.description.bytes.assign(bytes.begin(), bytes.end());
    }
    const bool hasEnd = !area.records.empty() && area.records.back().IsLast();
    if (area.id == AREA_ID::MULTIRECORD && !area.damaged && !hasEnd)
        draft.zeroes = std::min(RECORD_HEADER_SIZE, area.room - std::min(area.room, area.length));
    draft.old.length += draft.zeroes;
    return draft;
}

/// A new area before its first field is set.
AREA_DESCRIPTION NewArea(AREA_ID id, std::size_t spare) {
    AREA_DESCRIPTION description;
    description.id = id;
    description.spare = spare;
    if (AreaRow(id).LeadingFields() != 0)
        description.fields.emplace_back(ENCODING::BINARY, id == AREA_ID::CHASSIS ? BYTES{UNKNOWN_CHASSIS} : BYTES(3));
    return description;
}

/// The FRU as it is, ready for changes.
Result<DRAFT*> Prepare(DRAFT& draft) {
    const FRU& fru = draft.fru;
    if (fru.state != STATE::FRU && fru.state != STATE::BLANK && !fru.bytes.empty())
        return Refuse(REFUSAL::DAMAGED, AREA_ID::HEADER, "the common header is damaged", "repair it first");
    for (const AREA& area : fru.areas)
        draft.areas.push_back(DraftOf(fru, area));
    return &draft;
}

/// The padding after fields grow into it or shrink. Bytes that stay padding stay as they are.
void FitPadding(DRAFT_AREA& area) {
    if (!area.before || !area.changed || !area.before->IsInfo())
        return;
    BYTES padding = area.before->padding;
    const std::size_t before = area.before->used;
    const std::size_t after = NeededSize(area.description);
    if (after > before)
        padding.erase(padding.begin(),
                      padding.begin() + static_cast<std::ptrdiff_t>(std::min(after - before, padding.size())));
    else
        padding.insert(padding.begin(), before - after, BYTE{0});
    area.description.padding = std::move(padding);
    area.description.length = std::max(area.before->length, RoundUp(after));
}

void SayMoves(PLAN& plan, const DRAFT& draft) {
    for (const DRAFT_AREA& area : draft.areas) {
        const MOVE move{area.id, area.old.offset, area.removed ? 0 : area.offset, area.old.length,
                        area.removed ? 0 : area.bytes.size()};
        if (area.ghost || (move.from == move.to && move.sizeBefore == move.sizeAfter))
            continue;
        plan.moves.push_back(move);
        CHANGE change{area.id, std::string(AreaName(area.id)), {}, {}, {}};
        if (area.before)
            change.before = Text(Count(move.sizeBefore, "byte"), " at ", PlaceText(move.from));
        if (!area.removed)
            change.after = Text(Count(move.sizeAfter, "byte"), " at ", PlaceText(move.to));
        change.text = area.removed  ? "the area is removed"
                      : area.before ? Text("the area of ", change.before, " becomes one of ", change.after)
                                    : Text("a new area of ", change.after);
        plan.changes.push_back(std::move(change));
    }
    std::sort(plan.moves.begin(), plan.moves.end(), [](const MOVE& a, const MOVE& b) { return a.to < b.to; });
}

BYTES NewHeader(const DRAFT& draft) {
    BYTES header = draft.fru.state == STATE::FRU ? draft.fru.header : BYTES{FORMAT_VERSION, 0, 0, 0, 0, 0, 0, 0};
    for (const AREA_ROW& row : Areas())
        header[static_cast<std::size_t>(row.id)] = 0;
    for (const DRAFT_AREA& area : draft.areas)
        if (!area.removed)
            header[static_cast<std::size_t>(area.id)] = static_cast<BYTE>(area.offset / UNIT);
    header[7] = ZeroChecksum(BYTE_VIEW(header).first(HEADER_SIZE - 1));
    return header;
}

PLAN MakePlan(const DRAFT& draft) {
    PLAN plan;
    plan.bytes = draft.fru.bytes;
    plan.changes = draft.changes;
    SayMoves(plan, draft);
    if (draft.changes.empty())
        return plan;
    Copy(plan.bytes, 0, NewHeader(draft));
    for (const DRAFT_AREA& area : draft.areas)
        if (!area.removed && !area.ghost)
            Copy(plan.bytes, area.offset, area.bytes);
    plan.changed = Differences(draft.fru.bytes, plan.bytes);
    AddSteps(plan, draft.fru, draft);
    return plan;
}

} // namespace

DRAFT_AREA* DRAFT::Find(AREA_ID id) {
    for (DRAFT_AREA& area : areas)
        if (area.id == id && !area.removed)
            return &area;
    return nullptr;
}

Result<DRAFT_AREA*> DRAFT::FindOrMake(AREA_ID id) {
    if (DRAFT_AREA* area = Find(id)) {
        if (FAULT fault = FaultOf(fru, *area))
            return *fault;
        return area;
    }
    const auto behind = std::find_if(areas.begin(), areas.end(), [&](const DRAFT_AREA& area) { return area.id >= id; });
    DRAFT_AREA area;
    area.id = id;
    area.description = NewArea(id, limits.spare);
    area.changed = true;
    return &*areas.insert(behind, std::move(area));
}

void DRAFT::Say(const DRAFT_AREA& area, std::string name, std::string before, std::string after) {
    std::string text = Text(name, ": \"", before, "\" becomes \"", after, "\"");
    changes.push_back({area.id, std::move(name), std::move(before), std::move(after), std::move(text)});
}

FAULT FaultOf(const FRU& fru, const DRAFT_AREA& area) {
    if (!area.before || !area.before->damaged)
        return std::nullopt;
    for (const FINDING& finding : fru.findings)
        if (finding.area == area.id && finding.severity == SEVERITY::DAMAGE && finding.code != "record-checksum")
            return Refuse(REFUSAL::DAMAGED, area.id,
                          Text("the ", AreaName(area.id), " area is damaged: ", finding.text), "repair it first");
    return std::nullopt;
}

Result<PLAN> Apply(const FRU& fru, std::span<const EDIT> edits, const LIMITS& limits) {
    DRAFT draft{fru, limits, {}, {}};
    if (const auto prepared = Prepare(draft); !prepared)
        return prepared.Error();
    for (const EDIT& edit : edits)
        if (FAULT fault = std::visit([&](const auto& one) { return Edit(draft, one); }, edit))
            return *fault;
    for (DRAFT_AREA& area : draft.areas)
        FitPadding(area);
    if (FAULT fault = LayOut(draft))
        return *fault;
    return MakePlan(draft);
}

} // namespace FruImage
