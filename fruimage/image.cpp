#include "fruimage/image.h"

#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

bool IsBlank(BYTE_VIEW bytes) {
    return !bytes.empty() && (IsFilledWith(bytes, 0) || IsFilledWith(bytes, 0xFF));
}

/// The start of the next area behind `offset`, or the end of the image.
std::size_t NextOffset(const FRU& fru, std::size_t offset) {
    std::size_t next = std::max(fru.bytes.size(), offset);
    for (const AREA& area : fru.areas)
        if (area.offset > offset)
            next = std::min(next, area.offset);
    return next;
}

void ReadArea(FRU& fru, AREA& area) {
    const std::size_t end = NextOffset(fru, area.offset);
    const AREA_ID id = area.id;
    if (area.offset >= fru.bytes.size())
        Damage(fru.findings, "area-past-end", id, static_cast<std::size_t>(id),
               Text("it begins at ", PlaceText(area.offset), ", past the end of the image at ",
                    PlaceText(fru.bytes.size())));
    else if (area.IsInfo())
        area = ReadInfoArea(area.Row(), fru.bytes, area.offset, end, fru.findings);
    else if (id == AREA_ID::MULTIRECORD)
        area = ReadRecords(fru.bytes, area.offset, fru.findings);
    else if (Version(fru.bytes[area.offset]) != FORMAT_VERSION)
        Note(fru.findings, "internal-version", id, area.offset,
             Text("its format version is ", Version(fru.bytes[area.offset])));
}

/// Sets the properties that depend on the places of other areas.
void Measure(FRU& fru) {
    for (AREA& area : fru.areas) {
        area.room = NextOffset(fru, area.offset) - area.offset;
        if (area.id != AREA_ID::INTERNAL_USE)
            continue;
        area.length = area.room;
        area.declared = area.room;
        area.used = area.room;
    }
}

void MarkDamaged(FRU& fru) {
    for (const FINDING& finding : fru.findings)
        for (AREA& area : fru.areas)
            if (finding.severity == SEVERITY::DAMAGE && finding.area == area.id)
                area.damaged = true;
}

void ReportOverlap(FRU& fru, const AREA& area, const AREA& other) {
    Damage(fru.findings, "areas-overlap", area.id, area.offset,
           Text("its bytes from ", PlaceText(area.offset), " to ", PlaceText(area.offset + area.length),
                " overlap the ", AreaName(other.id), " area from ", PlaceText(other.offset), " to ",
                PlaceText(other.offset + other.length)));
}

/// Of two overlapping areas a damaged one is to blame; without one, either may be.
void CheckOverlaps(FRU& fru) {
    MarkDamaged(fru);
    for (std::size_t first = 0; first < fru.areas.size(); ++first)
        for (std::size_t second = first + 1; second < fru.areas.size(); ++second) {
            const AREA& one = fru.areas[first];
            const AREA& two = fru.areas[second];
            if (!one.Range().Overlaps(two.Range()))
                continue;
            if (one.damaged || !two.damaged)
                ReportOverlap(fru, one, two);
            if (two.damaged || !one.damaged)
                ReportOverlap(fru, two, one);
        }
    MarkDamaged(fru);
}

GAP MakeGap(const FRU& fru, std::size_t offset, std::size_t end, std::span<const RANGE> read) {
    GAP gap{offset, end - offset, GAP_CONTENT::OTHER};
    std::size_t known = offset;
    for (bool advanced = true; known < end && advanced;) {
        advanced = false;
        for (const RANGE& range : read)
            if (range.offset <= known && range.End() > known) {
                known = range.End();
                advanced = true;
            }
    }
    const BYTE_VIEW bytes = fru.View({offset, end - offset});
    if (known < end)
        gap.content = GAP_CONTENT::UNREAD;
    else if (IsFilledWith(bytes, 0))
        gap.content = GAP_CONTENT::ZEROES;
    else if (IsFilledWith(bytes, 0xFF))
        gap.content = GAP_CONTENT::ONES;
    return gap;
}

void FindGaps(FRU& fru, std::span<const RANGE> read) {
    std::vector<RANGE> taken = {{0, std::min(HEADER_SIZE, fru.bytes.size())}};
    for (const AREA& area : fru.areas)
        taken.push_back(area.Range());
    taken.push_back({fru.bytes.size(), 0});
    std::sort(taken.begin(), taken.end(), [](const RANGE& a, const RANGE& b) { return a.offset < b.offset; });
    std::size_t end = 0;
    for (const RANGE& range : taken) {
        const std::size_t begin = std::min(range.offset, fru.bytes.size());
        if (begin > end)
            fru.gaps.push_back(MakeGap(fru, end, begin, read));
        end = std::max(end, range.End());
    }
}

/// The areas of a sound header.
void ReadNamedAreas(FRU& fru) {
    if ((fru.header[0] & 0xF0) != 0 || fru.header[6] != 0)
        Note(fru.findings, "header-reserved", AREA_ID::HEADER, fru.header[6] != 0 ? 6 : 0,
             "reserved bits of the header are not zero");
    for (const AREA_ROW& row : Areas()) {
        AREA area;
        area.id = row.id;
        area.offset = fru.header[static_cast<std::size_t>(row.id)] * UNIT;
        if (area.offset != 0)
            fru.areas.push_back(std::move(area));
    }
    for (AREA& area : fru.areas)
        ReadArea(fru, area);
}

void ReadDamagedHeader(FRU& fru) {
    SearchAreas(fru);
    const bool version = Version(fru.header[0]) == FORMAT_VERSION;
    fru.state = version || !fru.candidates.empty() ? STATE::DAMAGED_HEADER : STATE::NOT_A_FRU;
    if (fru.state == STATE::NOT_A_FRU)
        Damage(fru.findings, "not-a-fru", AREA_ID::HEADER, 0,
               Text("format version is ", Version(fru.header[0]), " and should be 1"));
    else if (!version)
        WrongByte(fru.findings, "header-version", AREA_ID::HEADER, 0, fru.header[0], FORMAT_VERSION,
                  "first byte, the format version,");
    if (fru.state == STATE::DAMAGED_HEADER && fru.header[7] != fru.expectedHeaderChecksum)
        WrongByte(fru.findings, "header-checksum", AREA_ID::HEADER, 7, fru.header[7], fru.expectedHeaderChecksum,
                  "checksum");
}

void ReadHeader(FRU& fru) {
    const BYTE_VIEW header = Slice(fru.bytes, 0, HEADER_SIZE);
    fru.header.assign(header.begin(), header.end());
    if (IsBlank(fru.bytes)) {
        fru.state = STATE::BLANK;
        Note(fru.findings, "blank", AREA_ID::HEADER, 0, Text("every byte is ", ByteText(fru.bytes[0])));
        return;
    }
    if (header.size() < HEADER_SIZE) {
        Damage(fru.findings, "header-short", AREA_ID::HEADER, 0, Text("only ", Count(header.size(), "byte"), " there"));
        return;
    }
    fru.expectedHeaderChecksum = ZeroChecksum(header.first(HEADER_SIZE - 1));
    if (Version(header[0]) != FORMAT_VERSION || header[7] != fru.expectedHeaderChecksum)
        return ReadDamagedHeader(fru);
    fru.state = STATE::FRU;
    ReadNamedAreas(fru);
}

} // namespace

void Note(FINDINGS& findings, const char* code, AREA_ID area, std::size_t offset, std::string text) {
    findings.push_back({SEVERITY::NOTE, code, area, offset, {}, {}, std::move(text)});
}

void Damage(FINDINGS& findings, const char* code, AREA_ID area, std::size_t offset, std::string text) {
    findings.push_back({SEVERITY::DAMAGE, code, area, offset, {}, {}, std::move(text)});
}

void WrongByte(FINDINGS& findings, const char* code, AREA_ID area, std::size_t offset, BYTE found, BYTE expected,
               const std::string& what) {
    findings.push_back({SEVERITY::DAMAGE,
                        code,
                        area,
                        offset,
                        {found},
                        {expected},
                        Text(what, " is ", ByteText(found), " and should be ", ByteText(expected))});
}

bool HasDamage(const FINDINGS& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const FINDING& finding) { return finding.severity == SEVERITY::DAMAGE; });
}

const AREA* FRU::Find(AREA_ID area) const {
    const auto found = std::find_if(areas.begin(), areas.end(), [&](const AREA& one) { return one.id == area; });
    return found == areas.end() ? nullptr : &*found;
}

const FIELD* FRU::Find(const FIELD_NAME& name) const {
    const AREA* area = Find(name.area);
    if (!area || (name.part != FIELD_NAME::FIXED && name.part != FIELD_NAME::CUSTOM))
        return nullptr;
    return name.Position() < area->fields.size() ? &area->fields[name.Position()] : nullptr;
}

bool FRU::IsSound() const {
    return state == STATE::FRU && !HasDamage(findings);
}

FRU Parse(BYTE_VIEW image, std::span<const RANGE> read) {
    FRU fru;
    fru.bytes.assign(image.begin(), image.end());
    ReadHeader(fru);
    Measure(fru);
    CheckOverlaps(fru);
    FindGaps(fru, read);
    return fru;
}

FRU Parse(BYTE_VIEW image) {
    const RANGE whole{0, image.size()};
    return Parse(image, {&whole, 1});
}

} // namespace FruImage
