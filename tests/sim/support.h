// What the simulator's tests share.
#pragma once

#include "sim/simulatedbmc.h"

#include <gtest/gtest.h>

namespace Frudata_Sim {

/// Bytes counting up from `first`.
inline BYTES Counting(UINT8 first, std::size_t count) {
    BYTES bytes(count);
    for (std::size_t index = 0; index < count; ++index)
        bytes[index] = static_cast<UINT8>(first + index);
    return bytes;
}

/// Completion code, then data.
inline BYTES Flat(const IpmiAnswer& answer) {
    BYTES bytes{answer.completionCode};
    Append(bytes, answer.data);
    return bytes;
}

inline BYTES Ask(CSimulatedBmc& bmc, UINT8 netFn, UINT8 cmd, BYTES data = {}) {
    return Flat(bmc.Execute({.netFn = netFn, .cmd = cmd, .data = std::move(data)}));
}

} // namespace Frudata_Sim
