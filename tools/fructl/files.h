// Files read whole and replaced whole: a failure on the way leaves the old file as it was.
#pragma once

#include "tools/fructl/bytes.h"

#include <filesystem>
#include <string>

namespace Fructl {

/// @throws CToolError where the file cannot be read
BYTES ReadFile(const std::string& path);

/// A file under construction: a fresh directory beside the target holds it until it takes its place.
class CReplacement {
  public:
    /// @throws CToolError where nothing can be written beside `target`
    explicit CReplacement(const std::string& target);
    ~CReplacement();
    CReplacement(const CReplacement&) = delete;
    CReplacement& operator=(const CReplacement&) = delete;

    const std::filesystem::path& Directory() const { return m_directory; }
    /// The target's own name: the file to write in the directory.
    std::string Name() const { return m_target.filename().string(); }
    std::filesystem::path Path() const { return m_directory / m_target.filename(); }

    void Write(BYTE_VIEW bytes) const;
    /// Puts the finished file in the target's place, with the target's owner and permissions.
    void Finish() const;

  private:
    std::filesystem::path m_target;
    std::filesystem::path m_directory;
};

/// Writes a whole file that way.
void WriteFile(const std::string& path, BYTE_VIEW bytes);

} // namespace Fructl
