// A directory for one test, and the files in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Frudata_Tests {

inline std::string ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::string& name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
}

/// A new directory, which is the current one as long as this object lives, and is gone then.
class CFreshDirectory {
  public:
    CFreshDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "frudata-XXXXXX").string();
        m_path = mkdtemp(name.data());
        std::filesystem::current_path(m_path);
    }
    CFreshDirectory(const CFreshDirectory&) = delete;
    CFreshDirectory& operator=(const CFreshDirectory&) = delete;
    ~CFreshDirectory() {
        std::filesystem::current_path(m_before);
        std::filesystem::remove_all(m_path);
    }
    const std::filesystem::path& Path() const { return m_path; }

  private:
    std::filesystem::path m_before = std::filesystem::current_path();
    std::filesystem::path m_path;
};

} // namespace Frudata_Tests
