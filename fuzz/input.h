// What every fuzzer has: the bytes of one run, what is put right in them, and a promise that does not hold.
#pragma once

#include "frudata/types.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

namespace Frudata_Fuzz {

using BYTES = std::vector<UINT8>;

/// The bytes of one run, taken from the front. Behind the end come zeros.
class CInput {
  public:
    CInput(const UINT8* data, std::size_t size) : m_rest(data, size) {}

    bool IsEmpty() const { return m_rest.empty(); }
    UINT8 Byte() {
        const BYTES one = Take(1);
        return one.empty() ? UINT8{0} : one[0];
    }
    /// The least significant byte first.
    std::size_t Word() {
        const UINT8 low = Byte();
        return low | static_cast<std::size_t>(Byte()) << 8;
    }
    /// At most `count` bytes, in a buffer of exactly their number: what is read behind them is found out.
    BYTES Take(std::size_t count) {
        const auto taken = m_rest.first(std::min(count, m_rest.size()));
        m_rest = m_rest.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }
    BYTES Rest() { return Take(m_rest.size()); }
    std::string Text(std::size_t count) {
        const BYTES bytes = Take(count);
        return {bytes.begin(), bytes.end()};
    }

  private:
    std::span<const UINT8> m_rest;
};

/// Ends the process with a finding unless `holds`.
inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (holds)
        return;
    std::fprintf(stderr, "%s:%d does not hold\n", file, line);
    std::abort();
}

/// Completes the checksums of a common header and of the info areas that it names.
void RepairImage(BYTES& image);
/// Sets the length byte and the checksum of one info area.
void RepairArea(BYTES& area);

/// Room of exactly `size` bytes for the answer of an IMB driver.
struct CRoom {
    explicit CRoom(std::size_t size) : bytes(size, UNTOUCHED), length(static_cast<int>(size)) {}

    static constexpr UINT8 UNTOUCHED = 0xA5;
    BYTES bytes;
    int length;
    UINT8 completionCode = UNTOUCHED;

    UINT8* Data() { return bytes.data(); }
    bool IsUntouched() const {
        return completionCode == UNTOUCHED && length == static_cast<int>(bytes.size()) &&
               bytes == BYTES(bytes.size(), UNTOUCHED);
    }
    std::span<const UINT8> Answer() const {
        Require(length >= 0 && length <= static_cast<int>(bytes.size()));
        return std::span(bytes).first(static_cast<std::size_t>(length));
    }
};

/// The data of a Send Message (IPMI 2.0, section 22.7): up to 62 bytes of the input, nearly always with checksums
/// that are right.
BYTES SendMessageData(CInput& input);
/// Requires `frame` to be the data of the Get Message (section 22.6) that answers what `sent` carries.
void RequireBridgedAnswer(const BYTES& sent, std::span<const UINT8> frame);

} // namespace Frudata_Fuzz
