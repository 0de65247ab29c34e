// Internal use area: an opaque run of bytes (FRU Information Storage Definition, section 9).
#pragma once

#include "frudata/areas/fruarea.h"

#include <memory>

namespace Frudata_Private {

/// Holds up to 512 bytes and shows them as one read-only hexadecimal field.
class CInternalUseArea : public CFruArea {
  public:
    static constexpr UINTN NUMBER_OF_FIELDS = 1;
    static constexpr UINTN SIZE = 512;

    /// Replaces the content; more than 512 bytes are a fatal assertion. `setModified` marks the area, and
    /// never unmarks it. @return always true
    bool SetData(const UINT8* data, UINTN length, bool setModified);
    /// The bytes, zero after GetLength().
    const UINT8* GetData() const;
    UINTN GetLength() const;
    bool IsValid() const;
    bool IsModified() const;
    void ResetIsModified();

    /// 1, or 0 for an empty area.
    UINTN GetNumberOfFields() const override;
    /// A field of another area is a fatal assertion.
    UINTN GetFieldIndexFromEnum(FRU_FIELD field) const override;
    /// An index other than 0 is a fatal assertion.
    const WCHAR* GetFieldTitleFromIndex(UINTN index) const override;
    /// An index other than 0, or a failed allocation, is a fatal assertion.
    const WCHAR* GetFieldValueFromIndex(UINTN index) override;

  private:
    UINT8 m_data[SIZE] = {};
    bool m_modified = false;
    UINT32 m_length = 0;
    std::unique_ptr<WCHAR[]> m_pValue;
};

} // namespace Frudata_Private
