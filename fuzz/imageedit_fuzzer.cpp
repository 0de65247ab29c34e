// Edits on hostile images: input is a control byte, the size of the image in two bytes, the image, and the edits.
#include "fruimage/edit.h"
#include "fuzz/input.h"

namespace {

using namespace FruImage;
using Frudata_Fuzz::CInput;
using Frudata_Fuzz::Require;

constexpr BYTE SUMS = 1;
constexpr BYTE EXACT_SIZE = 2;

FIELD_NAME Name(CInput& input) {
    const auto area = static_cast<AREA_ID>(input.Byte() % 7);
    const BYTE position = input.Byte();
    return position == 0xFF ? FIELD_NAME{area, FIELD_NAME::LANGUAGE, 0} : FieldAt(area, position % 16);
}

EDIT NextEdit(CInput& input) {
    const BYTE kind = input.Byte();
    const FIELD_NAME name = Name(input);
    const BYTES bytes = input.Take(input.Byte());
    const std::string text(bytes.begin(), bytes.end());
    const auto encoding = (kind & 0x80) != 0 ? std::optional(static_cast<ENCODING>(kind >> 4 & 7)) : std::nullopt;
    const RECORD_VALUE record{kind, 2, bytes};
    switch (kind % 12) {
    case 0:
        return SET_BYTES{name, static_cast<ENCODING>(kind >> 4 & 3), bytes};
    case 1:
        return ADD_FIELD{name.area, text, encoding};
    case 2:
        return REMOVE_FIELD{name};
    case 3:
        return REMOVE_AREA{name.area};
    case 4:
        return SET_INTERNAL{bytes, (kind & 0x80) != 0};
    case 5:
        return APPEND_RECORD{record};
    case 6:
        return REPLACE_RECORD{name.index, record};
    case 7:
        return REMOVE_RECORD{name.index};
    case 8:
        return REPLACE_RECORDS{{record, record}};
    case 9:
        return SET_RECORD_BYTES{bytes};
    default:
        return SET_FIELD{name, text, encoding};
    }
}

bool RemovesInternal(const EDIT& edit) {
    const REMOVE_AREA* removal = std::get_if<REMOVE_AREA>(&edit);
    return removal && removal->area == AREA_ID::INTERNAL_USE;
}

void Check(const FRU& before, const PLAN& plan, std::span<const EDIT> edits) {
    BYTES written = before.bytes;
    written.resize(plan.bytes.size());
    for (const STEP& step : plan.steps)
        std::copy(step.bytes.begin(), step.bytes.end(), written.begin() + static_cast<std::ptrdiff_t>(step.offset));
    Require(written == plan.bytes);
    const FRU after = Parse(plan.bytes);
    Require(after.state == STATE::FRU || plan.IsEmpty());
    Require(!before.IsSound() || after.IsSound());
    // One that was removed and set anew may lie elsewhere.
    if (std::any_of(edits.begin(), edits.end(), RemovesInternal))
        return;
    const AREA* internal = before.Find(AREA_ID::INTERNAL_USE);
    const AREA* now = after.Find(AREA_ID::INTERNAL_USE);
    Require(!internal || !now || internal->damaged || now->offset == internal->offset);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CInput input(data, size);
    const BYTE control = input.Byte();
    BYTES image = input.Take(input.Word());
    if ((control & SUMS) != 0)
        Frudata_Fuzz::RepairImage(image);
    std::vector<EDIT> edits;
    while (!input.IsEmpty() && edits.size() < 8)
        edits.push_back(NextEdit(input));
    const FRU fru = Parse(image);
    const LIMITS limits{(control & EXACT_SIZE) != 0 ? image.size() : 0, static_cast<std::size_t>(control >> 2)};
    for (const EDIT& edit : edits)
        if (const Result<PLAN> plan = Apply(fru, {&edit, 1}, limits))
            Check(fru, *plan, {&edit, 1});
    if (const Result<PLAN> plan = Apply(fru, edits, limits))
        Check(fru, *plan, edits);
    return 0;
}
