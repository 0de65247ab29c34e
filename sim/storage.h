// The bytes of one device, in memory or in a plain file that a run leaves behind for inspection.
#pragma once

#include "sim/ipmi.h"

#include <filesystem>

namespace Frudata_Sim {

class CStorage {
  public:
    explicit CStorage(BYTES bytes) : m_bytes(std::move(bytes)) {}
    /// Backed by `file`. Throws std::runtime_error where it cannot be read.
    explicit CStorage(const std::filesystem::path& file);

    std::size_t Size() const { return m_bytes.size(); }
    const BYTES& Bytes() const { return m_bytes; }
    /// @return false where the range is not inside the device or the file cannot be written
    bool Write(std::size_t offset, std::span<const UINT8> data);

  private:
    BYTES m_bytes;
    std::filesystem::path m_file;
};

} // namespace Frudata_Sim
