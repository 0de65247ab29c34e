// The sum that the checksums of FRU data are made of.
#pragma once

#include "frudata/types.h"

#include <cstring>

namespace Frudata_Private {

/// The sum of `length` bytes modulo 256, four at a time: carries only go into bits that are dropped.
inline UINT8 ByteSum(const UINT8* data, UINTN length) {
    UINT32 sum = 0;
    for (; length >= sizeof sum; length -= static_cast<UINTN>(sizeof sum), data += sizeof sum) {
        UINT32 word;
        std::memcpy(&word, data, sizeof word);
        sum += word + (word >> 8) + (word >> 16) + (word >> 24);
    }
    for (; length > 0; --length)
        sum += *data++;
    return static_cast<UINT8>(sum);
}

} // namespace Frudata_Private
