#include "fruimage/compose.h"
#include "fruimage/mending.h"
#include "fruimage/parse.h"
#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

namespace {

/// The area as it would be with other first bytes: `version` and `units` of length.
struct VARIANT {
    BYTES bytes;
    bool sound = false;
};

VARIANT Try(const FRU& fru, const AREA& area, BYTE version, std::size_t units) {
    const BYTE_VIEW bytes = fru.View({area.offset, units * UNIT});
    VARIANT variant{{bytes.begin(), bytes.end()}, false};
    if (variant.bytes.size() < units * UNIT)
        return variant;
    variant.bytes[0] = version;
    variant.bytes[1] = static_cast<BYTE>(units);
    FINDINGS findings;
    const AREA read = ReadInfoArea(area.Row(), variant.bytes, 0, variant.bytes.size(), findings);
    variant.sound = !HasDamage(findings) && IsPlausible(read) && IsFilledWith(read.padding, 0);
    return variant;
}

/// Whether a shorter area would cut off no written byte.
bool LeavesNothing(const FRU& fru, const AREA& area, std::size_t size) {
    if (size >= area.length)
        return true;
    const BYTE_VIEW rest = fru.View({area.offset + size, std::min(area.length, area.room) - std::min(size, area.room)});
    return IsFilledWith(rest, 0) || IsFilledWith(rest, 0xFF);
}

/// Lengths, in units, with which the area would be sound.
std::vector<std::size_t> SoundLengths(const FRU& fru, const AREA& area) {
    std::vector<std::size_t> lengths;
    for (std::size_t units = 1; units * UNIT <= std::min(area.room, MAXIMUM_INFO_AREA); ++units)
        if (units * UNIT != area.declared && LeavesNothing(fru, area, units * UNIT) &&
            Try(fru, area, fru.bytes[area.offset], units).sound)
            lengths.push_back(units);
    return lengths;
}

void MendRecord(MENDING& mending, const RECORD& record, const std::string& name) {
    const auto with = [&](BYTE flags) {
        const auto change = static_cast<BYTE>(record.header[1] - flags);
        return record.HeaderChecksum() == static_cast<BYTE>(record.expectedHeaderChecksum + change);
    };
    const bool header = record.HeaderChecksum() == record.expectedHeaderChecksum;
    const bool data = record.Checksum() == record.expectedChecksum;
    if (!header && (!data || record.data.empty()))
        return; // nothing vouches for its length
    const BYTE flags = static_cast<BYTE>(RECORD_FORMAT | (record.header[1] & END_OF_LIST));
    if (!header && record.header[1] != flags && with(flags))
        return mending.Put(AREA_ID::MULTIRECORD, record.offset + 1, {&flags, 1},
                           Text(name, ": flags ", ByteText(record.header[1]), " become ", ByteText(flags)));
    if (!header && record.Format() != RECORD_FORMAT)
        return;
    if (!data && !record.closing)
        mending.Put(AREA_ID::MULTIRECORD, record.offset + 3, {&record.expectedChecksum, 1},
                    Text(name, ": checksum of its data ", ByteText(record.Checksum()), " becomes ",
                         ByteText(record.expectedChecksum)));
    mending.PutChecksum(AREA_ID::MULTIRECORD, {record.offset, RECORD_HEADER_SIZE}, record.offset + 4,
                        name + ": header ");
}

} // namespace

FAULT MendInfoArea(MENDING& mending, const FRU& fru, const AREA& area) {
    const std::string name(AreaName(area.id));
    const BYTE version = fru.bytes[area.offset];
    if (version != FORMAT_VERSION && area.declared != 0 && area.declared <= area.room &&
        Try(fru, area, FORMAT_VERSION, area.declared / UNIT).sound) {
        mending.Put(area.id, area.offset, {&FORMAT_VERSION, 1},
                    Text(name, ": format version ", ByteText(version), " becomes ", ByteText(FORMAT_VERSION)));
        return std::nullopt;
    }
    const std::vector<std::size_t> lengths = SoundLengths(fru, area);
    if (lengths.size() > 1)
        return Refuse(REFUSAL::AMBIGUOUS, area.id,
                      Text("the ", name, " area may have ", lengths[0] * UNIT, " or ", lengths[1] * UNIT, " bytes"),
                      "nothing is guessed");
    if (lengths.size() == 1) {
        const auto units = static_cast<BYTE>(lengths[0]);
        mending.Put(area.id, area.offset + 1, {&units, 1},
                    Text(name, ": length ", area.declared, " becomes ", units * UNIT));
    } else if (version == FORMAT_VERSION && area.declared == area.length && area.length <= area.room &&
               IsPlausible(area))
        mending.PutChecksum(area.id, area.Range(), area.offset + area.length - 1, name + ": ");
    return std::nullopt;
}

void MendRecords(MENDING& mending, const AREA& area) {
    for (std::size_t index = 0; index < area.records.size(); ++index) {
        const RECORD& record = area.records[index];
        if (!record.cut)
            MendRecord(mending, record, Text("record ", index + 1));
    }
    const FRU fru = Parse(mending.bytes);
    const AREA* mended = fru.Find(AREA_ID::MULTIRECORD);
    for (const FINDING& finding : fru.findings) {
        if (finding.code != "no-end-of-list" || finding.severity != SEVERITY::DAMAGE || !mended ||
            mended->records.empty())
            continue;
        const RECORD& last = mended->records.back();
        const auto flags = static_cast<BYTE>(last.header[1] | END_OF_LIST);
        const std::string name = Text("record ", mended->records.size());
        mending.Put(AREA_ID::MULTIRECORD, last.offset + 1, {&flags, 1}, Text(name, " becomes the last"));
        mending.PutChecksum(AREA_ID::MULTIRECORD, {last.offset, RECORD_HEADER_SIZE}, last.offset + 4,
                            name + ": header ");
    }
}

} // namespace FruImage
