#include "tests/fructl/support.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <sys/wait.h>
#include <unistd.h>

namespace Fructl_Tests {

namespace fs = std::filesystem;

RESULT Shell(const std::string& command) {
    const int status = std::system(("( " + command + " ) >.output 2>.errors </dev/null").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(".output"), ReadText(".errors")};
}

RESULT Fructl(const std::string& arguments) {
    return Shell("LC_ALL=en_US.UTF-8 " FRUCTL_PROGRAM " " + arguments);
}

BYTES ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string ReadText(const std::string& name) {
    const BYTES bytes = ReadFile(name);
    return {bytes.begin(), bytes.end()};
}

void WriteFile(const std::string& name, const BYTES& bytes) {
    WriteText(name, {bytes.begin(), bytes.end()});
}

void WriteText(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
}

BYTES Part(const BYTES& bytes, std::size_t offset, std::size_t count) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

void SetFaults(const std::string& directory, const std::string& faults) {
    json bmc = json::parse(ReadText(directory + "/bmc.json"));
    bmc["faults"] = json::parse(faults);
    WriteText(directory + "/bmc.json", bmc.dump());
}

CFructlTest::CFructlTest() : m_before(fs::current_path()) {
    std::string pattern = (fs::temp_directory_path() / "fructl-test-XXXXXX").string();
    m_path = mkdtemp(pattern.data());
    fs::current_path(m_path);
    // What a scan keeps for the completion is not the user's.
    setenv("XDG_CACHE_HOME", (m_path / ".cache").c_str(), 1);
    Frudata_Sim::WriteSmallServer("server");
}

CFructlTest::~CFructlTest() {
    fs::current_path(m_before);
    fs::remove_all(m_path);
}

} // namespace Fructl_Tests
