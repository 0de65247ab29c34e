// Shared by the tests of fructl: the program run in a fresh directory with a small simulated server.
#pragma once

#include "sim/samples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace Fructl_Tests {

using Frudata_Sim::BYTES;
using nlohmann::json;
using testing::HasSubstr;

struct RESULT {
    int status;
    std::string output;
    std::string errors;

    json Json() const { return json::parse(output); }
};

/// Runs fructl with `arguments`, as a shell takes them.
RESULT Fructl(const std::string& arguments);
/// Runs `command` in a shell.
RESULT Shell(const std::string& command);

BYTES ReadFile(const std::string& name);
std::string ReadText(const std::string& name);
void WriteFile(const std::string& name, const BYTES& bytes);
void WriteText(const std::string& name, const std::string& text);
/// `count` bytes from `offset` on.
BYTES Part(const BYTES& bytes, std::size_t offset, std::size_t count);
/// Gives the simulated BMC in `directory` these faults.
void SetFaults(const std::string& directory, const std::string& faults);

/// A directory of its own, with the small server in "server".
class CFructlTest : public testing::Test {
  protected:
    CFructlTest();
    ~CFructlTest() override;

  private:
    std::filesystem::path m_before;
    std::filesystem::path m_path;
};

} // namespace Fructl_Tests
