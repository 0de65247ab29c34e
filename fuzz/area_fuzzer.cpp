// An area of any kind: input is a control byte, the size of the area image in two bytes, the image, and the changes
// made to it.
#include "fuzz/support.h"

namespace {

using namespace Frudata_Fuzz;
using namespace Frudata_Private;

constexpr UINT8 AREA_MASK = 3;
constexpr UINT8 REPAIR = 4;
constexpr UINT8 CUSTOM_FIELDS = 8;
constexpr UINT8 MULTIRECORD = 0x10;

bool Takes(CFru& fru, FRU_AREA selector, const BYTES& image) {
    const auto length = static_cast<UINTN>(image.size());
    if (CInfoArea* const area = fru.GetInfoArea(selector))
        return area->SetData(image.data(), length);
    if (selector == FRU_AREA_INTERNAL_USE)
        return fru.GetInternalUseArea().SetData(image.data(), length, true);
    const bool isTaken = fru.SetMultiRecArea(image.data(), length, true) == 0;
    fru.CheckMultiRecCheckSum();
    return isTaken;
}

void ChangeCustomFields(CInfoArea& area, CInput& input) {
    const BYTES added = input.Take(input.Byte());
    area.AddCustomField(added.data(), static_cast<UINTN>(added.size()), FRU_FIELD_TYPE_TEXT);
    if (area.GetNumberOfCustomFields() > 0)
        area.RemoveCustomField(input.Byte());
    area.UpdateChecksum();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    return Run(data, size, [](_EFI_FRU_INTERFACE* table, CInput& input) {
        const UINT8 control = input.Byte();
        const auto selector = control & MULTIRECORD
                                  ? FRU_AREA_MULTIRECORD
                                  : static_cast<FRU_AREA>(FRU_AREA_INTERNAL_USE + (control & AREA_MASK));
        BYTES image = input.Take(input.Word());
        if (control & REPAIR)
            RepairArea(image);
        if (image.empty())
            return;
        auto fru = std::make_unique<CFru>();
        UINT8 header[CFruHeader::FRU_HEADER_LENGTH] = {1};
        header[selector - 1] = 1;
        fru->DecodeHeader(header);
        if (!Takes(*fru, selector, image))
            return;
        CInfoArea* const area = fru->GetInfoArea(selector);
        if (area && (control & CUSTOM_FIELDS))
            ChangeCustomFields(*area, input);
        if (area)
            area->GetData();
        SelectNewFru(std::move(fru));
        UseSelectedFru(table, input);
        SaveAndReload(table, input);
    });
}
