// An EEPROM that the kernel shows as a file: its size is fixed, and it is written in place.
#pragma once

#include "tools/fructl/bytes.h"
#include "tools/fructl/child.h"

#include <string>

namespace Fructl {

/// Whether `path` leads to such a file: "eeprom" of an I2C device, or "nvmem", below /sys.
bool IsEepromPath(const std::string& path);

/// Read and write like a FRU device.
class CEeprom {
  public:
    /// @throws CToolError where `path` is no file of a fixed size
    explicit CEeprom(std::string path);

    /// All bytes of it. @throws CToolError
    BYTES Read() const;
    /// Writes `bytes` from its start on, except where `known` has the same. @throws CToolError
    void Write(BYTE_VIEW bytes, BYTE_VIEW known, const PROGRESS& progress) const;

  private:
    [[noreturn]] void Fail(const char* doing) const;

    std::string m_path;
    std::size_t m_size = 0;
};

} // namespace Fructl
