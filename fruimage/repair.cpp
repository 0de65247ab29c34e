#include "fruimage/repair.h"

#include "fruimage/compose.h"
#include "fruimage/draft.h"
#include "fruimage/mending.h"
#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

FAULT MendAreas(MENDING& mending) {
    const FRU fru = Parse(mending.bytes);
    for (const AREA& area : fru.areas) {
        const auto holds = [&](const AREA& other) {
            return !other.damaged && RANGE{area.offset, 1}.Overlaps(other.Range());
        };
        if (!area.damaged || area.offset >= mending.bytes.size())
            continue;
        FAULT fault;
        if (std::any_of(fru.areas.begin(), fru.areas.end(), holds))
            fault = MendOffset(mending, fru, area);
        else if (area.IsInfo())
            fault = MendInfoArea(mending, fru, area);
        else if (area.id == AREA_ID::MULTIRECORD)
            MendRecords(mending, area);
        if (fault)
            return fault;
    }
    return std::nullopt;
}

ERROR NothingToDo(const FRU& fru, const std::vector<std::string>& left) {
    if (fru.state == STATE::BLANK)
        return Refuse(REFUSAL::NOTHING_TO_DO, AREA_ID::HEADER, "it is blank: there is nothing to repair");
    if (left.empty())
        return Refuse(REFUSAL::NOTHING_TO_DO, AREA_ID::HEADER, "it is sound");
    return Refuse(REFUSAL::NOTHING_TO_DO, AREA_ID::HEADER, "nothing can be repaired for certain: " + left.front());
}

void AddStep(PLAN& plan, const FRU& after, const RANGE& range) {
    const BYTE_VIEW bytes = Slice(plan.bytes, range.offset, range.length);
    STEP step{range.offset, {bytes.begin(), bytes.end()}, AREA_ID::HEADER, "common header", false};
    for (const AREA& area : after.areas)
        if (area.Range().Overlaps(range)) {
            step.area = area.id;
            step.what = Text(area.Row().name, " area at ", PlaceText(area.offset));
        }
    plan.steps.push_back(std::move(step));
}

void AddSteps(PLAN& plan, const FRU& before, const FRU& after) {
    const RANGE header{0, HEADER_SIZE};
    bool headerDiffers = false;
    plan.changed = Differences(before.bytes, plan.bytes);
    for (const RANGE& range : plan.changed) {
        headerDiffers = headerDiffers || range.Overlaps(header);
        if (!range.Overlaps(header))
            AddStep(plan, after, range);
    }
    if (headerDiffers)
        AddStep(plan, after, header);
}

} // namespace

void MENDING::Put(AREA_ID area, std::size_t offset, BYTE_VIEW what, std::string why) {
    const BYTE_VIEW before = Slice(bytes, offset, what.size());
    if (before.size() != what.size() || std::equal(before.begin(), before.end(), what.begin()))
        return;
    changes.push_back({area, PlaceText(offset), Hex(before), Hex(what), std::move(why)});
    std::copy(what.begin(), what.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

void MENDING::PutChecksum(AREA_ID area, const RANGE& range, std::size_t offset, const std::string& name) {
    const BYTE before = bytes[offset];
    const auto after = static_cast<BYTE>(ZeroChecksum(Slice(bytes, range.offset, range.length)) + before);
    Put(area, offset, {&after, 1}, Text(name, "checksum ", ByteText(before), " becomes ", ByteText(after)));
}

Result<PLAN> Repair(const FRU& fru) {
    MENDING mending{fru.bytes, {}};
    if (fru.state == STATE::DAMAGED_HEADER)
        if (FAULT fault = MendHeader(mending, fru))
            return *fault;
    if (FAULT fault = MendAreas(mending))
        return *fault;
    PLAN plan;
    const FRU after = Parse(mending.bytes);
    for (const FINDING& finding : after.findings)
        if (finding.severity == SEVERITY::DAMAGE)
            plan.notes.push_back(Text(AreaName(finding.area), ": ", finding.text));
    if (mending.changes.empty())
        return NothingToDo(fru, plan.notes);
    plan.bytes = std::move(mending.bytes);
    plan.changes = std::move(mending.changes);
    AddSteps(plan, fru, after);
    return plan;
}

} // namespace FruImage
