#include "tools/fructl/fru.h"

#include <fmt/format.h>

#include <functional>

namespace Fructl {

namespace {

std::string Damages(const FRU& fru, const std::function<bool(AREA_ID)>& wanted) {
    if (fru.state == STATE::BLANK)
        return fmt::format("it is blank: every byte is {:02X}h", fru.bytes.empty() ? 0 : fru.bytes.front());
    std::string text;
    for (const FINDING& finding : fru.findings)
        if (finding.severity == SEVERITY::DAMAGE && wanted(finding.area))
            text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", AreaName(finding.area), finding.text);
    return text;
}

} // namespace

std::string_view TypeName(const FIELD& field) {
    switch (field.kind) {
    case FIELD_KIND::DATE:
        return "date";
    case FIELD_KIND::CHASSIS_TYPE:
        return "chassis-type";
    default:
        return FruImage::EncodingName(field.encoding);
    }
}

std::string BareValue(const FIELD& field) {
    if (field.kind != FIELD_KIND::CHASSIS_TYPE || field.bytes.empty())
        return field.text;
    const std::string_view name = FruImage::ChassisTypeName(field.bytes[0]);
    return name.empty() ? std::to_string(field.bytes[0]) : std::string(name);
}

std::string ProductText(const FRU& fru) {
    std::string text;
    for (const std::string_view area : {"product", "board"}) {
        const std::string maker = FirstText(fru, {fmt::format("{}.manufacturer", area)});
        const std::string name =
            FirstText(fru, {fmt::format("{}.{}", area, area == "board" ? "product-name" : "name")});
        text = fmt::format("{}{}{}", maker, maker.empty() || name.empty() ? "" : " ", name);
        if (!text.empty())
            break;
    }
    return text;
}

std::string FirstText(const FRU& fru, std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names)
        if (const auto known = FruImage::ParseFieldName(name))
            if (const FIELD* field = fru.Find(*known); field && !field->text.empty())
                return field->text;
    return {};
}

std::string_view StatusName(const FRU& fru) {
    if (fru.state == STATE::BLANK)
        return "blank";
    return fru.IsSound() ? "ok" : "damaged";
}

std::string ProblemText(const FRU& fru) {
    return Damages(fru, [](AREA_ID) { return true; });
}

std::string ProblemText(const FRU& fru, AREA_ID area) {
    const AREA* found = fru.Find(area);
    const std::string text = Damages(fru, [&](AREA_ID one) { return one == area; });
    const bool isHeader = !found || !found->certain;
    return !text.empty() || !isHeader ? text : Damages(fru, [](AREA_ID one) { return one == AREA_ID::HEADER; });
}

} // namespace Fructl
