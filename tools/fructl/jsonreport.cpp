#include "tools/fructl/jsonreport.h"

#include "tools/fructl/report.h"
#include "tools/fructl/titles.h"
#include "tools/fructl/words/words.h"

#include "fruimage/description.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <variant>

namespace Fructl {

namespace {

using FruImage::AREA_DESCRIPTION;
using FruImage::DESCRIPTION;
using nlohmann::json;

constexpr const char* KIND_WORDS[] = {"text", "image", "device"};

json JsonChecksum(UINT8 is, UINT8 shouldBe) {
    return {{"is", is}, {"shouldBe", shouldBe}, {"ok", is == shouldBe}};
}

json JsonHeader(const FRU& fru) {
    json header = {{"raw", Hex(fru.header)}};
    if (fru.header.size() == FruImage::HEADER_SIZE) {
        header["checksum"] = JsonChecksum(fru.header.back(), fru.expectedHeaderChecksum);
        header["version"] = fru.header[0];
        header["pad"] = fru.header[FruImage::HEADER_SIZE - 2];
    }
    return header;
}

json JsonRecord(const RECORD& record) {
    json result = {{"type", record.Type()},
                   {"format", record.Format()},
                   {"last", record.IsLast()},
                   {"flags", record.header[1]},
                   {"data", Hex(record.data)}};
    if (!record.IsSound() || (record.closing && record.Checksum() != record.expectedChecksum))
        result["checksum"] = JsonChecksum(record.Checksum(), record.expectedChecksum);
    const FruRecords::DECODED_RECORD decoded = Decoded(record);
    result["title"] = decoded.title;
    result["fields"] = json::array();
    for (const FruRecords::RECORD_FIELD& field : decoded.fields) {
        json one = {
            {"name", field.key}, {"title", field.title}, {"value", JsonRecordValue(field)}, {"text", field.display}};
        if (!field.unit.empty())
            one["unit"] = field.unit;
        result["fields"].push_back(std::move(one));
    }
    if (!decoded.notes.empty())
        result["notes"] = decoded.notes;
    return result;
}

json JsonField(const AREA& area, std::size_t position) {
    const FIELD& field = area.fields[position];
    const FIELD_NAME name = FruImage::FieldAt(area.id, position);
    json result = JsonEntry({FieldNameText(name), field.text, TypeName(field), field.bytes});
    result["title"] = Title(area.Row(), position);
    if (field.cut)
        result["cut"] = true;
    return result;
}

void AddInfo(const FRU& fru, const AREA& area, json& result) {
    if (area.length > 0)
        result["version"] = fru.bytes[area.offset];
    result["free"] = area.Free();
    result["checksum"] = JsonChecksum(area.checksum, area.expectedChecksum);
    if (area.Row().hasLanguage)
        result["language"] = {{"code", area.language}, {"name", FruImage::LanguageName(area.language)}};
    result["fields"] = json::array();
    for (std::size_t position = 0; position < area.fields.size(); ++position)
        result["fields"].push_back(JsonField(area, position));
    if (area.ended && area.fields.size() < area.Row().fields.size())
        result["endsEarly"] = true;
    if (!FruImage::IsFilledWith(area.padding, 0))
        result["padding"] = Hex(area.padding);
}

json JsonArea(const FRU& fru, const AREA& area) {
    json result = {{"name", AreaName(area.id)}, {"title", AreaTitle(area.id)}, {"offset", area.offset},
                   {"length", area.length},     {"used", area.used},           {"raw", Hex(fru.View(area.Range()))}};
    if (area.damaged)
        result["damaged"] = true;
    if (!area.certain)
        result["certain"] = false;
    if (area.IsInfo())
        AddInfo(fru, area, result);
    if (area.id == AREA_ID::MULTIRECORD) {
        result["records"] = json::array();
        for (const RECORD& record : area.records)
            result["records"].push_back(JsonRecord(record));
    }
    return result;
}

/// The bytes of no area, if an image can be built from the report.
void AddGaps(const FRU& fru, json& report) {
    const auto description = FruImage::Describe(fru);
    if (!description)
        return;
    report["fill"] = description->fill;
    report["gaps"] = json::array();
    for (const FruImage::GAP_DESCRIPTION& gap : description->gaps)
        report["gaps"].push_back({{"offset", gap.offset}, {"raw", Hex(gap.bytes)}});
}

json JsonAddress(const ADDRESS& address) {
    return {{"type", TypeText(address.type)},   {"lun", address.lun},
            {"address", address.deviceAddress}, {"bus", address.bus},
            {"controller", address.controller}, {"id", address.deviceId},
            {"sizeData", address.mbmcSizeData}, {"sizeAddress", address.mbmcSizeAddress}};
}

struct VALUE_AS_JSON {
    json operator()(std::monostate) const { return nullptr; }
    json operator()(const FruRecords::DECIMAL& value) const { return value.Number(); }
    json operator()(const BYTES& value) const { return Hex(value); }
    template <class VALUE> json operator()(const VALUE& value) const { return value; }
};

} // namespace

json JsonRecordValue(const FruRecords::RECORD_FIELD& field) {
    return std::visit(VALUE_AS_JSON(), field.value);
}

json JsonEntry(const ENTRY& entry) {
    json result = {{"name", entry.name}, {"value", entry.value}, {"type", entry.type}, {"raw", Hex(entry.raw)}};
    if (entry.type == "chassis-type")
        result["number"] = entry.raw.empty() ? 0 : entry.raw[0];
    return result;
}

json JsonSource(const SOURCE& source) {
    json result = {{"kind", KIND_WORDS[source.kind]}, {"name", source.label}};
    if (!source.title.empty())
        result["title"] = source.title;
    if (source.kind == SOURCE::DEVICE)
        result["at"] = DeviceText(source);
    if (source.kind == SOURCE::DEVICE && !source.isEeprom)
        result["address"] = JsonAddress(source.address);
    return result;
}

json JsonProblems(const FRU& fru) {
    json problems = json::array();
    for (const FINDING& finding : fru.findings)
        if (finding.severity == SEVERITY::DAMAGE || fru.state == STATE::BLANK)
            problems.push_back(
                {{"area", AreaName(finding.area)}, {"code", finding.code}, {"text", Spoken(finding.text)}});
    return problems;
}

json JsonFindings(const FRU& fru) {
    json findings = json::array();
    for (const FINDING& finding : fru.findings) {
        json one = {{"severity", finding.severity == SEVERITY::DAMAGE ? "damage" : "note"},
                    {"area", AreaName(finding.area)},
                    {"code", finding.code},
                    {"text", Spoken(finding.text)},
                    {"offset", finding.offset}};
        if (!finding.found.empty())
            one["found"] = Hex(finding.found);
        if (!finding.expected.empty())
            one["expected"] = Hex(finding.expected);
        findings.push_back(std::move(one));
    }
    return findings;
}

json JsonReport(const CONTENTS& contents) {
    const FRU& fru = contents.fru;
    json areas = json::array();
    for (const AREA& area : fru.areas)
        areas.push_back(JsonArea(fru, area));
    json report = {{"source", JsonSource(contents.source)},
                   {"status", StatusName(fru)},
                   {"problems", JsonProblems(fru)},
                   {"findings", JsonFindings(fru)},
                   {"size", fru.bytes.size()},
                   {"header", JsonHeader(fru)},
                   {"areas", std::move(areas)}};
    AddGaps(fru, report);
    return report;
}

void PrintJson(json document) {
    document["schema"] = SCHEMA;
    PrintText(document.dump(2, ' ', false, json::error_handler_t::replace) + "\n");
}

} // namespace Fructl
