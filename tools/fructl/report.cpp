#include "tools/fructl/report.h"

#include "tools/fructl/standardnames.h"
#include "tools/fructl/terminal.h"
#include "tools/fructl/titles.h"
#include "tools/fructl/value.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cstdio>

namespace Fructl {

namespace {

using nlohmann::json;

constexpr const char* KINDS[] = {"FRU text file", "binary image", "device"};
constexpr const char* KIND_WORDS[] = {"text", "image", "device"};

std::string AreaHeading(const AREA& area) {
    std::string text = Colored(COLOR::BOLD, AreaTitle(area.id));
    text += fmt::format("  {} bytes at {:03X}h", area.bytes.size(), area.offset);
    if (!area.IsInfo())
        return text + "\n";
    text += fmt::format(", {} free, ", area.Room());
    if (area.checksum == area.expectedChecksum)
        text += "checksum ok";
    else
        text += Colored(COLOR::RED,
                        fmt::format("checksum {:02X}h, should be {:02X}h", area.checksum, area.expectedChecksum));
    if (area.id != FRU_AREA_CHASSIS)
        text += fmt::format(", language {} ({})", area.language,
                            LanguageName(area.language).empty() ? "?" : LanguageName(area.language));
    return text + "\n";
}

std::string FieldRows(const AREA& area) {
    std::vector<std::vector<std::string>> rows;
    for (std::size_t position = 0; position < area.fields.size(); ++position) {
        const FIELD& field = area.fields[position];
        std::string value = DecodeValue(field);
        if (value.empty())
            value = Colored(COLOR::DIM, "(empty)");
        const bool marked = field.kind == FIELD_KIND::TEXT && field.Type() != FIELD_8_BIT && !field.data.empty();
        if (marked)
            value += Colored(COLOR::DIM, fmt::format(" [{}]", TypeName(field)));
        rows.push_back({Colored(COLOR::DIM, FieldName(area.Row(), position)), Title(area.Row(), position), value});
    }
    return Table(rows);
}

std::string Indented(const std::string& text) {
    std::string result = "  ";
    for (const char character : text) {
        result += character;
        if (character == '\n')
            result += "  ";
    }
    result.erase(result.find_last_not_of(' ') + 1);
    return result;
}

BYTE_VIEW Record(const AREA& area, std::size_t number) {
    const std::size_t begin = area.records[number];
    const std::size_t end = number + 1 < area.records.size() ? area.records[number + 1] : area.bytes.size();
    return Slice(area.bytes, begin, end - begin);
}

std::string RecordRows(const AREA& area) {
    std::vector<std::vector<std::string>> rows;
    for (std::size_t number = 0; number < area.records.size(); ++number) {
        const BYTE_VIEW record = Record(area, number);
        rows.push_back({fmt::format("record {}", number + 1), fmt::format("type {:02X}h", record[0]),
                        fmt::format("{} bytes", record[2]), Hex(record.subspan(RECORD_HEADER_SIZE), " ")});
    }
    return Table(rows);
}

json JsonChecksum(UINT8 is, UINT8 shouldBe) {
    return {{"is", is}, {"shouldBe", shouldBe}, {"ok", is == shouldBe}};
}

json JsonHeader(BYTE_VIEW header) {
    if (header.size() < HEADER_SIZE)
        return {{"raw", Hex(header)}};
    return {{"raw", Hex(header)},
            {"checksum", JsonChecksum(header[HEADER_SIZE - 1], ZeroChecksum(header.first(HEADER_SIZE - 1)))}};
}

json JsonArea(const AREA& area) {
    json result = {{"name", AreaName(area.id)},   {"title", AreaTitle(area.id)}, {"offset", area.offset},
                   {"length", area.bytes.size()}, {"used", area.used},           {"raw", Hex(area.bytes)}};
    if (area.id == FRU_AREA_MULTIRECORD) {
        result["records"] = json::array();
        for (std::size_t number = 0; number < area.records.size(); ++number) {
            const BYTE_VIEW record = Record(area, number);
            result["records"].push_back({{"type", record[0]},
                                         {"format", record[1] & 0x0F},
                                         {"last", (record[1] & 0x80) != 0},
                                         {"data", Hex(record.subspan(RECORD_HEADER_SIZE))}});
        }
    }
    if (!area.IsInfo())
        return result;
    result["free"] = area.Room();
    result["checksum"] = {
        {"is", area.checksum}, {"shouldBe", area.expectedChecksum}, {"ok", area.checksum == area.expectedChecksum}};
    if (area.id != FRU_AREA_CHASSIS)
        result["language"] = {{"code", area.language}, {"name", LanguageName(area.language)}};
    result["fields"] = json::array();
    for (std::size_t position = 0; position < area.fields.size(); ++position) {
        json field = JsonField(FieldName(area.Row(), position), area.fields[position]);
        field["title"] = Title(area.Row(), position);
        result["fields"].push_back(std::move(field));
    }
    return result;
}

} // namespace

std::string TextReport(const CONTENTS& contents) {
    const FRU& fru = contents.fru;
    std::string text = fmt::format("{}  {}, {} bytes", Colored(COLOR::BOLD, contents.source.label),
                                   KINDS[contents.source.kind], fru.size);
    if (!contents.source.title.empty() && contents.source.title != contents.source.label)
        text += fmt::format(", \"{}\"", Printable(contents.source.title));
    if (contents.source.kind == SOURCE::DEVICE)
        text += fmt::format(", {}", AddressText(contents.source.address));
    text += "\n";
    for (const AREA& area : fru.areas) {
        text += "\n" + AreaHeading(area);
        if (area.IsInfo())
            text += FieldRows(area);
        else if (area.id == FRU_AREA_INTERNAL_USE)
            text += Indented(HexDump(area.bytes));
        else
            text += RecordRows(area);
    }
    return text;
}

json JsonField(const std::string& name, const FIELD& field) {
    json result = {{"name", name}, {"value", DecodeValue(field)}, {"type", TypeName(field)}, {"raw", Hex(field.data)}};
    if (field.kind == FIELD_KIND::CHASSIS_TYPE)
        result["number"] = field.data.empty() ? 0 : field.data[0];
    return result;
}

json JsonSource(const SOURCE& source) {
    json result = {{"kind", KIND_WORDS[source.kind]}, {"name", source.label}};
    if (!source.title.empty())
        result["title"] = source.title;
    if (source.kind == SOURCE::DEVICE)
        result["at"] = DeviceText(source);
    if (source.kind == SOURCE::DEVICE && !source.isEeprom) {
        const ADDRESS& address = source.address;
        result["address"] = {{"type", TypeText(address.type)},   {"lun", address.lun},
                             {"address", address.deviceAddress}, {"bus", address.bus},
                             {"controller", address.controller}, {"id", address.deviceId},
                             {"sizeData", address.mbmcSizeData}, {"sizeAddress", address.mbmcSizeAddress}};
    }
    return result;
}

json JsonProblems(const FRU& fru) {
    json problems = json::array();
    for (const PROBLEM& problem : fru.problems)
        problems.push_back({{"area", AreaName(problem.area)}, {"code", problem.code}, {"text", problem.text}});
    return problems;
}

json JsonReport(const CONTENTS& contents) {
    json areas = json::array();
    for (const AREA& area : contents.fru.areas)
        areas.push_back(JsonArea(area));
    return {{"source", JsonSource(contents.source)},     {"status", contents.fru.IsDamaged() ? "damaged" : "ok"},
            {"problems", JsonProblems(contents.fru)},    {"size", contents.fru.size},
            {"header", JsonHeader(contents.fru.header)}, {"areas", std::move(areas)}};
}

void PrintJson(json document) {
    document["schema"] = SCHEMA;
    PrintText(document.dump(2, ' ', false, json::error_handler_t::replace) + "\n");
}

void PrintText(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace Fructl
