// A FRU during a change: its areas as descriptions, and their old places.
#pragma once

#include "fruimage/compose.h"
#include "fruimage/edit.h"
#include "fruimage/plan.h"

#include <list>

namespace FruImage {

/// One area of the draft.
struct DRAFT_AREA {
    AREA_ID id = AREA_ID::HEADER;
    const AREA* before = nullptr; ///< null: a new one
    RANGE old;                    ///< bytes that no other area had; none for a new one
    /// A damaged offset into another area: it has no bytes of its own and stays as it is.
    bool ghost = false;
    bool removed = false;
    bool changed = false;
    std::size_t zeroes = 0; ///< that end a list of records without an end mark, and move with it
    AREA_DESCRIPTION description;

    BYTES bytes;            ///< LayOut: its new bytes
    std::size_t offset = 0; ///< LayOut: where it goes

    RANGE Range() const { return {offset, bytes.size()}; }
    bool IsPresent() const { return !removed; }
};

struct DRAFT {
    const FRU& fru;
    LIMITS limits;
    std::list<DRAFT_AREA> areas; ///< in the order of the header
    std::vector<CHANGE> changes;

    DRAFT_AREA* Find(AREA_ID id);
    /// The area, created if there is none. Refuses a damaged one.
    Result<DRAFT_AREA*> FindOrMake(AREA_ID id);
    /// Records the change of what CHANGE calls `name`, and says it in words.
    void Say(const DRAFT_AREA& area, std::string name, std::string before, std::string after);
};

/// Why the area cannot be changed.
FAULT FaultOf(const FRU& fru, const DRAFT_AREA& area);

/// Make one edit each. After a fault the draft is of no use.
FAULT Edit(DRAFT& draft, const SET_FIELD& edit);
FAULT Edit(DRAFT& draft, const SET_BYTES& edit);
FAULT Edit(DRAFT& draft, const ADD_FIELD& edit);
FAULT Edit(DRAFT& draft, const REMOVE_FIELD& edit);
FAULT Edit(DRAFT& draft, const REMOVE_AREA& edit);
FAULT Edit(DRAFT& draft, const SET_INTERNAL& edit);
FAULT Edit(DRAFT& draft, const APPEND_RECORD& edit);
FAULT Edit(DRAFT& draft, const REPLACE_RECORD& edit);
FAULT Edit(DRAFT& draft, const REMOVE_RECORD& edit);
FAULT Edit(DRAFT& draft, const REPLACE_RECORDS& edit);
FAULT Edit(DRAFT& draft, const SET_RECORD_BYTES& edit);

/// Composes the areas and gives each its place.
FAULT LayOut(DRAFT& draft);
/// The plan that makes `after` of the image.
void AddSteps(PLAN& plan, const FRU& before, const DRAFT& draft);
/// Ranges in which two images differ, bytes that only `after` has included.
std::vector<RANGE> Differences(BYTE_VIEW before, BYTE_VIEW after);

} // namespace FruImage
