// Changes that the library can make: values of fields, and the bytes of areas without fields.
#pragma once

#include "tools/fructl/fru.h"

#include "frudata/types.h"

#include <optional>
#include <string>
#include <vector>

namespace Fructl {

/// A value that the library writes as 8-bit text; a chassis type or a date as its bytes.
struct FIELD_CHANGE {
    FIELD_NAME name;
    std::size_t fields = 0; ///< of its area, before and after
    BYTES before;
    BYTES after;

    std::ptrdiff_t Growth() const {
        return static_cast<std::ptrdiff_t>(after.size()) - static_cast<std::ptrdiff_t>(before.size());
    }
};

struct LIBRARY_CHANGES {
    std::vector<FIELD_CHANGE> fields;
    std::optional<BYTES> internalUse;
    std::optional<BYTES> multiRecord;

    bool Touches(AREA_ID area) const;
};

/// The changes from `before` to `after`; nothing if they are more than values. LibraryWrites tells whether the library
/// then writes exactly `after`.
std::optional<LIBRARY_CHANGES> LibraryChanges(const FRU& before, const FRU& after);

/// The library's selector of the area.
FRU_AREA LibraryArea(AREA_ID area);

} // namespace Fructl
