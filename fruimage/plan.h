// The writes that an edit or a repair needs, and why.
#pragma once

#include "fruimage/bytes.h"
#include "fruimage/names.h"

#include <string>
#include <vector>

namespace FruImage {

/// One difference in words.
struct CHANGE {
    AREA_ID area = AREA_ID::HEADER;
    std::string name;   ///< AREA.FIELD, "board", "header", "multirecord.record2", ...
    std::string before; ///< the value as people see it; empty where there was none
    std::string after;  ///< the value as people see it; empty where there is none
    std::string text;   ///< the whole change in words: "checksum 12h becomes 34h"
};

/// An area that gets another place or size. A new one has no size before, a removed one none after.
struct MOVE {
    AREA_ID area = AREA_ID::HEADER;
    std::size_t from = 0;
    std::size_t to = 0;
    std::size_t sizeBefore = 0;
    std::size_t sizeAfter = 0;
};

/// One write.
struct STEP {
    std::size_t offset = 0;
    BYTES bytes;
    AREA_ID area = AREA_ID::HEADER;
    std::string what; ///< "board area at its new place 0C8h", "common header", ...
    bool safe = true; ///< overwrites nothing that the old image uses: an interruption loses nothing
};

struct PLAN {
    BYTES bytes;                    ///< the whole new image, with unread bytes of the old one as given
    std::vector<CHANGE> changes;    ///< the changes asked for, then those that follow
    std::vector<MOVE> moves;        ///< in the order of the new offsets
    std::vector<RANGE> changed;     ///< bytes that differ, ascending, neighbours joined
    std::vector<STEP> steps;        ///< in the order of writing; the common header is last
    std::vector<std::string> notes; ///< for people, such as: bytes of unknown use are overwritten

    /// Bytes that the steps write.
    std::size_t Written() const {
        std::size_t sum = 0;
        for (const STEP& step : steps)
            sum += step.bytes.size();
        return sum;
    }
    bool IsEmpty() const { return steps.empty(); }
};

} // namespace FruImage
