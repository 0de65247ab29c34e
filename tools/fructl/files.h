// Files read whole and written whole. "-" is standard input or standard output.
#pragma once

#include "tools/fructl/bytes.h"
#include "tools/fructl/interrupt.h"

#include <filesystem>
#include <string>

namespace Fructl {

/// The most bytes of a binary image, whose offsets have 16 bits, and of any other file.
inline constexpr std::size_t IMAGE_LIMIT = 64 * 1024;
inline constexpr std::size_t FILE_LIMIT = 1024 * 1024;
/// The name of standard input and output.
inline constexpr const char* STANDARD_STREAM = "-";

/// At most `count` bytes from the start of a file. @throws CToolError where it cannot be read
BYTES ReadStart(const std::string& path, std::size_t count);
/// Refuses more than `limit` bytes. @throws CToolError
void CheckSize(const std::string& path, const BYTES& bytes, std::size_t limit);
/// @throws CToolError where the file cannot be read or has more than `limit` bytes
BYTES ReadFile(const std::string& path, std::size_t limit = FILE_LIMIT);

/// A file under construction, in a fresh directory that goes with it, also when a signal ends the process. Replaces a
/// regular file, or none, in one step: a failure leaves the old file as it was. Writes through to anything else, such
/// as a pipe or a device node.
class CReplacement {
  public:
    /// @throws CToolError if the target is not writable
    explicit CReplacement(const std::string& target);
    ~CReplacement();
    CReplacement(const CReplacement&) = delete;
    CReplacement& operator=(const CReplacement&) = delete;

    const std::filesystem::path& Directory() const { return m_directory; }
    /// The target's own name: the file to write in the directory.
    std::string Name() const;
    std::filesystem::path Path() const { return m_directory / Name(); }

    void Write(BYTE_VIEW bytes) const;
    /// Moves the finished file over the target, with the target's owner and permissions, or writes its bytes through.
    void Finish() const;

  private:
    void Replace() const;

    CHold m_hold;
    std::filesystem::path m_target;
    bool m_through;
    std::filesystem::path m_directory;
};

/// Writes a whole file in this way. @throws CToolError
void WriteFile(const std::string& path, BYTE_VIEW bytes);

} // namespace Fructl
