// Two FRUs compared, entry by entry.
#pragma once

#include "tools/fructl/fru.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Fructl {

/// A named part of a FRU: a field, a language code, or the bytes of an area without fields.
struct ENTRY {
    std::string name;
    std::string value;
    std::string_view type;
    BYTES raw;
    AREA_ID area = AREA_ID::HEADER;
    std::string bare = {}; ///< in the form that `set` takes
    bool isWord = false;   ///< `value` and `bare` are words of this program, not somebody's text

    /// In the language of this run, which `set` takes, too.
    std::string Shown() const;
    std::string ShownBare() const;
};
/// All named parts, in the order of the header's offsets.
std::vector<ENTRY> Entries(const FRU& fru);
/// The entry of a name, if the FRU has it: a field, an area's data, or a field of a record.
std::optional<ENTRY> FindEntry(const FRU& fru, const std::string& name);

struct DIFFERENCE {
    std::optional<ENTRY> left;
    std::optional<ENTRY> right;

    const std::string& Name() const { return left ? left->name : right->name; }
};
std::vector<DIFFERENCE> Compare(const FRU& left, const FRU& right);

} // namespace Fructl
