// Type/length encoding of the fields of an info area (FRU Information Storage Definition, section 13).
#pragma once

#include "common/trace.h"
#include "frudata/types.h"

#include <memory>

namespace Frudata_Private {

/// Type code of a type/length byte, in place in bits 7..6.
enum FRU_FIELD_TYPE : UINT8 {
    FRU_FIELD_TYPE_BINARY = 0x00,
    FRU_FIELD_TYPE_BCD_PLUS = 0x40,
    FRU_FIELD_TYPE_SIX_BIT_ASCII = 0x80,
    FRU_FIELD_TYPE_TEXT = 0xC0
};

constexpr UINT8 FIELD_TYPE_MASK = 0xC0;
/// Closes the field list of an info area; recognised only where a custom field could start.
constexpr UINT8 END_OF_FIELDS = 0xC1;
/// Data bytes of the longest field.
constexpr UINTN MAX_FIELD_LENGTH = 63;

/// Number of data bytes behind a type/length byte.
inline UINT8 DecodeLength(UINT8 typeLength) {
    const CTrace trace(L"FruDefs", L"DecodeLength");
    return trace.Exit(static_cast<UINT8>(typeLength & 0x3F));
}

/// One fixed field: its type/length byte and its data, followed by a zero byte. Type/length 0 and no data
/// before the first value.
class CFruField {
  public:
    /// Replaces the value by the `length` bytes at `data`, which may belong to the field itself. `type` is a
    /// FRU_FIELD_TYPE, `length` at most MAX_FIELD_LENGTH. @return false when the allocation fails; the old value then
    /// stays
    bool Assign(int type, UINT8 length, const UINT8* data);

    UINT8 GetTypeLength() const { return m_typeLength; }
    const UINT8* GetData() const { return m_data.get(); }

  private:
    UINT8 m_typeLength = 0;
    std::unique_ptr<UINT8[]> m_data;
};

/// The display text of field bytes: those up to the first zero byte, converted by the current locale
/// whatever their type; empty where it cannot convert them. @return null when the allocation fails
std::unique_ptr<WCHAR[]> ToDisplayText(const UINT8* data);

} // namespace Frudata_Private
