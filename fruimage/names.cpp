#include "fruimage/names.h"

#include "fruimage/text.h"

#include <algorithm>

namespace FruImage {

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

constexpr AREA_ROW ROWS[] = {{AREA_ID::HEADER, "header", "Common header", 0, false, {}},
                             {AREA_ID::INTERNAL_USE, "internal", "Internal use area", 0, false, {}},
                             {AREA_ID::CHASSIS, "chassis", "Chassis info area", 3, false, CHASSIS_FIELDS},
                             {AREA_ID::BOARD, "board", "Board info area", 6, true, BOARD_FIELDS},
                             {AREA_ID::PRODUCT, "product", "Product info area", 3, true, PRODUCT_FIELDS},
                             {AREA_ID::MULTIRECORD, "multirecord", "Multi-record area", 0, false, {}}};

constexpr std::string_view CUSTOM = "custom";
/// An area of 2040 bytes cannot have more fields.
constexpr std::size_t MOST_CUSTOM_FIELDS = MAXIMUM_INFO_AREA;

/// The number behind "custom", or 0.
std::size_t CustomNumber(std::string_view digits) {
    std::size_t number = 0;
    if (digits.size() > 4 || digits.starts_with('0'))
        return 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9')
            return 0;
        number = number * 10 + static_cast<std::size_t>(digit - '0');
    }
    return number <= MOST_CUSTOM_FIELDS ? number : 0;
}

} // namespace

std::span<const AREA_ROW> Areas() {
    return std::span(ROWS).subspan(1);
}

const AREA_ROW& AreaRow(AREA_ID area) {
    const auto index = static_cast<std::size_t>(area);
    return ROWS[index < std::size(ROWS) ? index : 0];
}

std::string_view AreaName(AREA_ID area) {
    return AreaRow(area).name;
}

std::optional<AREA_ID> AreaFromName(std::string_view name) {
    for (const AREA_ROW& row : ROWS)
        if (name == row.name)
            return row.id;
    return std::nullopt;
}

std::size_t FIELD_NAME::Position() const {
    return part == CUSTOM ? AreaRow(area).fields.size() + index : index;
}

std::optional<FIELD_NAME> ParseFieldName(std::string_view text) {
    const std::size_t dot = text.find('.');
    const auto area = AreaFromName(text.substr(0, dot));
    if (!area || dot == std::string_view::npos)
        return std::nullopt;
    const std::string_view field = text.substr(dot + 1);
    const AREA_ROW& row = AreaRow(*area);
    if (!row.IsInfo())
        return field == "data" ? std::optional(FIELD_NAME{*area, FIELD_NAME::DATA, 0}) : std::nullopt;
    for (std::size_t index = 0; index < row.fields.size(); ++index)
        if (field == row.fields[index].name)
            return FIELD_NAME{*area, FIELD_NAME::FIXED, index};
    if (field == "language" && row.hasLanguage)
        return FIELD_NAME{*area, FIELD_NAME::LANGUAGE, 0};
    const std::size_t number = field.starts_with(CUSTOM) ? CustomNumber(field.substr(CUSTOM.size())) : 0;
    if (number == 0)
        return std::nullopt;
    return FIELD_NAME{*area, FIELD_NAME::CUSTOM, number - 1};
}

std::string FieldNameText(const FIELD_NAME& name) {
    const AREA_ROW& row = AreaRow(name.area);
    switch (name.part) {
    case FIELD_NAME::CUSTOM:
        return Text(row.name, ".", CUSTOM, name.index + 1);
    case FIELD_NAME::LANGUAGE:
        return Text(row.name, ".language");
    case FIELD_NAME::FIXED:
        if (name.index < row.fields.size())
            return Text(row.name, ".", row.fields[name.index].name);
        [[fallthrough]];
    default:
        return Text(row.name, ".data");
    }
}

FIELD_NAME FieldAt(AREA_ID area, std::size_t position) {
    const std::size_t fixed = AreaRow(area).fields.size();
    return position < fixed ? FIELD_NAME{area, FIELD_NAME::FIXED, position}
                            : FIELD_NAME{area, FIELD_NAME::CUSTOM, position - fixed};
}

std::string FieldTitle(const FIELD_NAME& name) {
    const AREA_ROW& row = AreaRow(name.area);
    if (name.part == FIELD_NAME::FIXED && name.index < row.fields.size())
        return row.fields[name.index].title;
    if (name.part == FIELD_NAME::CUSTOM)
        return Text("Custom field ", name.index + 1);
    return name.part == FIELD_NAME::LANGUAGE ? "Language" : row.title;
}

} // namespace FruImage
