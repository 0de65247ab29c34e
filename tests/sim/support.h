// What the simulator's tests share.
#pragma once

#include "sim/simulatedbmc.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace Frudata_Sim {

/// Bytes counting up from `first`.
inline BYTES Counting(UINT8 first, std::size_t count) {
    BYTES bytes(count);
    for (std::size_t index = 0; index < count; ++index)
        bytes[index] = static_cast<UINT8>(first + index);
    return bytes;
}

/// Completion code, then data.
inline BYTES Flat(const IpmiAnswer& answer) {
    BYTES bytes{answer.completionCode};
    Append(bytes, answer.data);
    return bytes;
}

inline BYTES Ask(CSimulatedBmc& bmc, UINT8 netFn, UINT8 cmd, BYTES data = {}) {
    return Flat(bmc.Execute({.netFn = netFn, .cmd = cmd, .data = std::move(data)}));
}

/// A fresh directory that goes with the test.
class CTemporaryDirectory {
  public:
    CTemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "simtestXXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    CTemporaryDirectory(const CTemporaryDirectory&) = delete;
    CTemporaryDirectory& operator=(const CTemporaryDirectory&) = delete;
    ~CTemporaryDirectory() { std::filesystem::remove_all(m_path); }
    const std::filesystem::path& Path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

} // namespace Frudata_Sim
