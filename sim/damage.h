// Ways in which the FRU image of a simulated device goes bad.
#pragma once

#include "sim/ipmi.h"

namespace Frudata_Sim {

enum class FRU_DAMAGE {
    NONE,
    HEADER_CHECKSUM, ///< the common header's checksum is wrong
    AREA_CHECKSUM,   ///< the checksum of the first info area is wrong
    LENGTH_PAST_END, ///< the first info area claims 255 times 8 bytes
    LENGTH_ZERO,     ///< the first info area claims no bytes
    NOT_FRU          ///< no FRU format at all: erased memory
};

/// Damages `image` in place. "First" is the first present of chassis, board and product; throws
/// std::invalid_argument where there is none.
void DamageFruImage(BYTES& image, FRU_DAMAGE damage);

} // namespace Frudata_Sim
