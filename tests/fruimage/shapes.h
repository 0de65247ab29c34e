// Layouts that real FRUs have, composed here and read, grown, described, damaged and repaired by the tests.
#pragma once

#include "fruimage/description.h"
#include "fruimage/edit.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace FruImage {

struct SHAPE {
    std::string name;
    BYTES image;
    std::vector<std::string> damages; ///< codes, in the order of the findings
    /// Of setting product.asset-tag to 40 characters; also where that is refused.
    std::optional<REFUSAL> refusal = {};
    std::optional<REFUSAL> repair = {}; ///< NOTHING_TO_DO for the sound ones; nothing: repaired
};

std::vector<SHAPE> Shapes();
const SHAPE& Shape(const std::string& name);
/// A board, a product and two records, with room between and behind them: 512 bytes.
DESCRIPTION Server();

inline void PrintTo(const ERROR& error, std::ostream* stream) {
    *stream << AreaName(error.area) << " " << error.field << ": " << error.text;
}

std::vector<std::string> Damages(const FRU& fru);
FIELD_NAME Name(const std::string& text);
std::string Value(const FRU& fru, const std::string& name);
/// The field of a name, for edits.
inline SET_FIELD Set(const std::string& name, const std::string& text) {
    return {Name(name), text, {}};
}
/// Expects that both have the same area: fields, or bytes where it has none.
void ExpectSameArea(const FRU& before, const FRU& after, AREA_ID id);
/// Expects what every plan promises: its steps make its bytes, the header is last, unused bytes are kept, the internal
/// use area stays.
void ExpectGoodPlan(const FRU& before, const PLAN& plan);

} // namespace FruImage
