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
