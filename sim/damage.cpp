#include "sim/damage.h"

#include "fruimage/image.h"

#include <algorithm>
#include <stdexcept>

namespace Frudata_Sim {

namespace {

constexpr UINT8 ERASED = 0xFF;
constexpr UINT8 MOST_UNITS = 255;
constexpr UINT8 WRONG = 0x5A;

const FruImage::AREA& FirstInfoArea(const FruImage::FRU& fru) {
    const auto first = std::find_if(fru.areas.begin(), fru.areas.end(), [](const auto& area) { return area.IsInfo(); });
    if (first == fru.areas.end())
        throw std::invalid_argument("no info area to damage");
    return *first;
}

} // namespace

void DamageFruImage(BYTES& image, FRU_DAMAGE damage) {
    const FruImage::FRU fru = FruImage::Parse(image);
    switch (damage) {
    case FRU_DAMAGE::NONE:
        break;
    case FRU_DAMAGE::HEADER_CHECKSUM:
        image.at(FruImage::HEADER_SIZE - 1) ^= WRONG;
        break;
    case FRU_DAMAGE::AREA_CHECKSUM:
        image.at(FirstInfoArea(fru).Range().End() - 1) ^= WRONG;
        break;
    case FRU_DAMAGE::LENGTH_PAST_END:
        image.at(FirstInfoArea(fru).offset + 1) = MOST_UNITS;
        break;
    case FRU_DAMAGE::LENGTH_ZERO:
        image.at(FirstInfoArea(fru).offset + 1) = 0;
        break;
    case FRU_DAMAGE::NOT_FRU:
        std::fill(image.begin(), image.end(), ERASED);
        break;
    }
}

} // namespace Frudata_Sim
