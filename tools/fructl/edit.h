// Changes of fields: AREA.FIELD=VALUE of the command line, all checked before the first is made.
#pragma once

#include "tools/fructl/fru.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Fructl {

/// One change of a field.
struct ASSIGNMENT {
    FIELD_NAME name;
    FIELD before;
    BYTES data;

    std::ptrdiff_t Growth() const {
        return static_cast<std::ptrdiff_t>(data.size()) - static_cast<std::ptrdiff_t>(before.data.size());
    }
};

/// All changes of one call.
struct EDITS {
    std::vector<ASSIGNMENT> fields;
    std::optional<BYTES> internalUse;
    std::optional<BYTES> multiRecord;

    bool IsEmpty() const { return fields.empty() && !internalUse && !multiRecord; }
    bool Touches(FRU_AREA area) const;
};

/// The changes that `texts` ask for; a value that is there already is none. @throws CToolError for a name
/// or value that cannot be set
EDITS ParseAssignments(const std::vector<std::string>& texts, const FRU& fru);
/// The changes that give `target` the field values of `values`. @throws CToolError where it lacks a field
EDITS CopyFields(const FRU& values, const FRU& target);
/// Refuses changes that do not fit into the areas. @throws CToolError
void CheckRoom(const EDITS& edits, const FRU& fru);
/// Text of every field that the text format drops (binary, 6-bit), as it would stand in an 8-bit field.
EDITS TextForDroppedFields(const FRU& fru);

/// One line a change: name, old and new value.
std::string DescribeEdits(const EDITS& edits);

} // namespace Fructl
