#include "tools/fructl/fieldname.h"

#include "tools/fructl/bytes.h"
#include "tools/fructl/toolerror.h"

#include <fmt/format.h>

#include <algorithm>

namespace Fructl {

namespace {

constexpr FIELD_ROW CHASSIS_FIELDS[] = {{"type", "Chassis type", FIELD_KIND::CHASSIS_TYPE},
                                        {"part-number", "Chassis part number", FIELD_KIND::TEXT},
                                        {"serial-number", "Chassis serial number", FIELD_KIND::TEXT}};

constexpr FIELD_ROW BOARD_FIELDS[] = {{"mfg-date", "Manufacturing date", FIELD_KIND::DATE},
                                      {"manufacturer", "Board manufacturer", FIELD_KIND::TEXT},
                                      {"product-name", "Board product name", FIELD_KIND::TEXT},
                                      {"serial-number", "Board serial number", FIELD_KIND::TEXT},
                                      {"part-number", "Board part number", FIELD_KIND::TEXT},
                                      {"file-id", "Board FRU file ID", FIELD_KIND::TEXT}};

constexpr FIELD_ROW PRODUCT_FIELDS[] = {
    {"manufacturer", "Product manufacturer", FIELD_KIND::TEXT},   {"name", "Product name", FIELD_KIND::TEXT},
    {"part-number", "Product part number", FIELD_KIND::TEXT},     {"version", "Product version", FIELD_KIND::TEXT},
    {"serial-number", "Product serial number", FIELD_KIND::TEXT}, {"asset-tag", "Asset tag", FIELD_KIND::TEXT},
    {"file-id", "Product FRU file ID", FIELD_KIND::TEXT}};

constexpr AREA_ROW AREAS[] = {{FRU_AREA_INTERNAL_USE, "internal", "Internal use area", 1, 0, {}},
                              {FRU_AREA_CHASSIS, "chassis", "Chassis info area", 2, 3, CHASSIS_FIELDS},
                              {FRU_AREA_BOARD, "board", "Board info area", 3, 6, BOARD_FIELDS},
                              {FRU_AREA_PRODUCT, "product", "Product info area", 4, 3, PRODUCT_FIELDS},
                              {FRU_AREA_MULTIRECORD, "multirecord", "Multi-record area", 5, 0, {}}};

constexpr std::string_view CUSTOM_PREFIX = "custom";

[[noreturn]] void RefuseName(std::string_view text) {
    throw CToolError(EXIT_USAGE, std::string(text), "there is no such field",
                     "'fructl fields' lists the names, such as board.serial-number or product.custom1");
}

FIELD_NAME InfoField(const AREA_ROW& row, std::string_view field, std::string_view text) {
    FIELD_NAME name{row.area, FIELD_NAME::FIXED, 0, std::string(text)};
    for (; name.index < row.fields.size(); ++name.index)
        if (field == row.fields[name.index].name)
            return name;
    if (field == "language" && row.area != FRU_AREA_CHASSIS) {
        name.part = FIELD_NAME::LANGUAGE;
        return name;
    }
    if (!field.starts_with(CUSTOM_PREFIX))
        RefuseName(text);
    const auto number = ParseNumber(field.substr(CUSTOM_PREFIX.size()), 511);
    if (!number || *number == 0)
        RefuseName(text);
    name.part = FIELD_NAME::CUSTOM;
    name.index = *number - 1;
    return name;
}

} // namespace

std::span<const AREA_ROW> Areas() {
    return AREAS;
}

const AREA_ROW& AreaRow(FRU_AREA area) {
    return *std::find_if(std::begin(AREAS), std::end(AREAS) - 1, [&](const AREA_ROW& row) { return row.area == area; });
}

std::string_view AreaName(FRU_AREA area) {
    return area == FRU_AREA_COMMON_HEADER ? std::string_view("header") : AreaRow(area).name;
}

std::optional<FRU_AREA> AreaFromName(std::string_view name) {
    if (name == "header")
        return FRU_AREA_COMMON_HEADER;
    for (const AREA_ROW& row : AREAS)
        if (name == row.name)
            return row.area;
    return std::nullopt;
}

FIELD_NAME ParseFieldName(std::string_view text) {
    const std::size_t dot = text.find('.');
    const auto area = AreaFromName(text.substr(0, dot));
    if (!area || dot == std::string_view::npos)
        RefuseName(text);
    const std::string_view field = text.substr(dot + 1);
    if (*area != FRU_AREA_COMMON_HEADER && AreaRow(*area).headerLength != 0)
        return InfoField(AreaRow(*area), field, text);
    if (field != "data")
        RefuseName(text);
    return {*area, FIELD_NAME::DATA, 0, std::string(text)};
}

std::string FieldName(const AREA_ROW& row, std::size_t position) {
    if (position < row.fields.size())
        return fmt::format("{}.{}", row.name, row.fields[position].name);
    return fmt::format("{}.{}{}", row.name, CUSTOM_PREFIX, position - row.fields.size() + 1);
}

} // namespace Fructl
