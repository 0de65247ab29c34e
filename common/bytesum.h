// The checksum of FRU data and of messages on a bus.
#pragma once

#include "frudata/types.h"

#include <cstring>

namespace Frudata_Private {

/// The sum of `length` bytes modulo 256, four bytes at a time: a carry reaches only bits that are dropped.
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

/// Two's complement of the byte sum of `length` bytes, so that data and checksum sum to 0; 0 for no bytes.
inline UINT8 ZeroChecksum(const UINT8* data, int length) {
    return static_cast<UINT8>(0U - ByteSum(data, length > 0 ? static_cast<UINTN>(length) : 0));
}

} // namespace Frudata_Private
