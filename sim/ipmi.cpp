#include "sim/ipmi.h"

#include <numeric>

namespace Frudata_Sim {

UINT8 ZeroChecksum(const UINT8* bytes, std::size_t count) {
    return static_cast<UINT8>(0U - std::accumulate(bytes, bytes + count, 0U));
}

void Append(BYTES& bytes, std::span<const UINT8> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

} // namespace Frudata_Sim
