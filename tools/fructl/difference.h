// A plan described for people and programs before it is written.
#pragma once

#include "tools/fructl/compare.h"

#include "fruimage/plan.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Fructl {

/// One line a change: name, old and new value; then the areas that move or change their size, and
/// the notes of the plan.
std::string DescribePlan(const FruImage::PLAN& plan, const FRU& before, const FRU& after);
/// The moves, and the numbers of bytes and steps.
nlohmann::json JsonMoves(const FruImage::PLAN& plan);
/// Every named value of two FRUs that differs: `name`, `before`, `after`.
nlohmann::json JsonChanges(const FRU& before, const FRU& after);

} // namespace Fructl
