// JSON as the description of an image: input is a document or, behind a zero byte, an image whose report is one.
#include "fuzz/input.h"
#include "tools/fructl/jsonimage.h"
#include "tools/fructl/jsonreport.h"
#include "tools/fructl/toolerror.h"

#include <nlohmann/json.hpp>

namespace {

using namespace Fructl;
using Frudata_Fuzz::Require;
using FruImage::AREA_DESCRIPTION;

/// Whether nothing in it is damaged on purpose: bytes as they are, a checksum, a list of records without an end, an
/// area past the end.
bool IsComposed(const FruImage::DESCRIPTION& description) {
    const auto isTold = [](const FruImage::RECORD_DESCRIPTION& record) { return record.checksum || record.flags; };
    return (description.version & 0x0F) == 1 &&
           std::all_of(description.areas.begin(), description.areas.end(), [&](const AREA_DESCRIPTION& area) {
               const bool isMissing = !AreaRow(area.id).IsInfo() && area.bytes.empty() && area.records.empty();
               return !isMissing && (area.id == AREA_ID::INTERNAL_USE || area.bytes.empty()) &&
                      std::none_of(area.records.begin(), area.records.end(), isTold);
           });
}

/// What `new --from` makes of it; nothing where it refuses that.
std::optional<BYTES> Made(const std::string& document) {
    try {
        const JSON_IMAGE json = ReadJsonImage(document, "document");
        const auto built = FruImage::Build(json.description);
        if (!built)
            return std::nullopt;
        const FRU fru = FruImage::Parse(*built);
        Require(fru.IsSound() || !IsComposed(json.description));
        if (json.changes.edits.empty() && json.changes.records.empty())
            return *built;
        const PLAN plan = MakePlan({{SOURCE::IMAGE, "image", {}, {}}, {}, fru}, json.changes, {});
        Require(FruImage::Parse(plan.bytes).IsSound());
        return plan.bytes;
    } catch (const CToolError&) {
        return std::nullopt;
    }
}

void ReportAndMake(const BYTES& image) {
    const FRU fru = FruImage::Parse(image);
    if (image.empty() || !FruImage::Describe(fru))
        return;
    const auto report = JsonReport({{SOURCE::IMAGE, "image", {}, {}}, image, fru});
    const auto made = Made(report.dump());
    Require(made && *made == image);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    Frudata_Fuzz::CInput input(data, size);
    if (size > 0 && input.Byte() == 0)
        return ReportAndMake(input.Rest()), 0;
    if (const auto made = Made({data, data + size}))
        ReportAndMake(*made);
    return 0;
}
