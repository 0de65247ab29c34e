// The common header of a FRU image (FRU Information Storage Definition, section 8).
#pragma once

#include "frudata/types.h"

namespace Frudata_Private {

/// Places in the common header. Area offsets count 8 bytes; 0 means that the area is absent.
enum FRU_HEADER_BYTE : UINTN {
    FRU_HEADER_FORMAT_VERSION = 0,
    FRU_HEADER_INTERNAL_USE = 1,
    FRU_HEADER_CHASSIS = 2,
    FRU_HEADER_BOARD = 3,
    FRU_HEADER_PRODUCT = 4,
    FRU_HEADER_MULTIRECORD = 5,
    FRU_HEADER_PAD = 6,
    FRU_HEADER_CHECKSUM = 7
};

/// The format version lies in the low bits of its byte; this library reads version 1.
constexpr UINT8 FRU_HEADER_VERSION_MASK = 0x07;
constexpr UINT8 FRU_HEADER_VERSION = 1;

/// The eight header bytes.
class CFruHeader {
  public:
    static constexpr UINTN FRU_HEADER_LENGTH = 8;

    UINT8 operator[](UINTN place) const { return m_bytes[place]; }
    bool Has(FRU_HEADER_BYTE area) const { return m_bytes[area] != 0; }
    /// Byte offset of an area in the image.
    UINTN Offset(FRU_HEADER_BYTE area) const { return m_bytes[area] * 8U; }

    UINTN GetLength() const;
    /// A copy, which keeps callers from writing into the header; valid until the next call.
    const UINT8* GetData();
    /// Replaces the bytes, unchecked.
    void SetData(const UINT8* data);
    /// Whether the bytes sum to 0 modulo 256.
    bool IsValid() const;

  private:
    UINT8 m_bytes[FRU_HEADER_LENGTH] = {};
    UINT8 m_copy[FRU_HEADER_LENGTH] = {};
};

} // namespace Frudata_Private
