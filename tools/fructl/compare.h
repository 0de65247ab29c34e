// Two FRUs compared, entry by entry.
#pragma once

#include "tools/fructl/edit.h"

#include <optional>
#include <string>
#include <vector>

namespace Fructl {

/// One thing of a FRU that has a name: a field, a language code, or the bytes of an area without fields.
struct ENTRY {
    std::string name;
    std::string value;
    std::string_view type;
    BYTES raw;
};
std::vector<ENTRY> Entries(const FRU& fru);
/// The entry of a name, if the FRU has it.
std::optional<ENTRY> FindEntry(const FRU& fru, const FIELD_NAME& name);

struct DIFFERENCE {
    std::optional<ENTRY> left;
    std::optional<ENTRY> right;

    const std::string& Name() const { return left ? left->name : right->name; }
};
std::vector<DIFFERENCE> Compare(const FRU& left, const FRU& right);

/// `fru` as it is after `edits`.
FRU Edited(FRU fru, const EDITS& edits);

} // namespace Fructl
