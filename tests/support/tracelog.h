// Reading the debug log of level 3.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace Frudata_Tests {

/// The operations that `log` enters. Each must be left again, in order, and nothing may have failed.
inline std::set<std::string> BalancedOperations(const std::string& log) {
    std::istringstream lines(log);
    std::vector<std::string> entered;
    std::set<std::string> names;
    for (std::string line; std::getline(lines, line);) {
        const std::string name = line.substr(0, line.find(' ')), what = line.substr(name.size());
        if (what == " [ENTRY]\r") {
            entered.push_back(name);
            names.insert(name);
        } else if (what != " [EXIT]\r" || entered.empty() || entered.back() != name) {
            ADD_FAILURE() << line << " where " << (entered.empty() ? "nothing" : entered.back()) << " was to be left";
            return names;
        } else
            entered.pop_back();
    }
    EXPECT_TRUE(entered.empty()) << entered.back() << " is not left";
    return names;
}

} // namespace Frudata_Tests
