// The interface of areas with fields that the cursor uses.
#pragma once

#include "frudata/types.h"

namespace Frudata_Private {

/// No such field in this area.
constexpr UINTN NO_FIELD_INDEX = 0xFFFFFFFF;

class CFruArea {
  public:
    virtual ~CFruArea() = default;

    virtual UINTN GetNumberOfFields() const = 0;
    /// The index of `field`. A field of another area is NO_FIELD_INDEX in some areas, a fatal assertion in others.
    virtual UINTN GetFieldIndexFromEnum(FRU_FIELD field) const = 0;
    /// The localised title, owned by the string table.
    virtual const WCHAR* GetFieldTitleFromIndex(UINTN index) const = 0;
    /// The display text, owned by the area and valid until the next call; null where there is none.
    virtual const WCHAR* GetFieldValueFromIndex(UINTN index) = 0;
};

} // namespace Frudata_Private
