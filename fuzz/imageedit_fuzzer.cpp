// Edits on hostile images: input is a control byte, the size of the image in two bytes, the image, and the edits.
#include "fruimage/edit.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace FruImage;

constexpr BYTE SUMS = 1;
constexpr BYTE EXACT_SIZE = 2;

void Require(bool condition, int line = __builtin_LINE()) {
    if (condition)
        return;
    std::fprintf(stderr, "line %d does not hold\n", line);
    std::abort();
}

/// The bytes of one run, taken from the front. Behind the end come zeroes.
class CBytes {
  public:
    CBytes(const std::uint8_t* data, std::size_t size) : m_rest(data, size) {}

    bool IsEmpty() const { return m_rest.empty(); }
    BYTE Byte() {
        const BYTES one = Take(1);
        return one.empty() ? BYTE{0} : one[0];
    }
    BYTES Take(std::size_t count) {
        const BYTE_VIEW bytes = m_rest.first(std::min(count, m_rest.size()));
        m_rest = m_rest.subspan(bytes.size());
        return {bytes.begin(), bytes.end()};
    }

  private:
    BYTE_VIEW m_rest;
};

/// Few inputs would get past the checksums otherwise.
void PutSumsRight(BYTES& image) {
    if (image.size() < HEADER_SIZE)
        return;
    image[0] = 1;
    image[7] = ZeroChecksum(BYTE_VIEW(image).first(7));
    for (const AREA& area : Parse(image).areas)
        if (area.IsInfo() && area.length > 0)
            image[area.offset + area.length - 1] = static_cast<BYTE>(
                image[area.offset + area.length - 1] + ZeroChecksum(Slice(image, area.offset, area.length)));
}

FIELD_NAME Name(CBytes& input) {
    const auto area = static_cast<AREA_ID>(input.Byte() % 7);
    const BYTE position = input.Byte();
    return position == 0xFF ? FIELD_NAME{area, FIELD_NAME::LANGUAGE, 0} : FieldAt(area, position % 16);
}

EDIT NextEdit(CBytes& input) {
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
    CBytes input(data, size);
    const BYTE control = input.Byte();
    const std::size_t imageSize = input.Byte() | static_cast<std::size_t>(input.Byte()) << 8;
    BYTES image = input.Take(imageSize);
    if ((control & SUMS) != 0)
        PutSumsRight(image);
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
