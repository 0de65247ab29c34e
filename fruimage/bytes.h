// Runs of bytes, and the units and checksums of the FRU format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace FruImage {

using BYTE = std::uint8_t;
using BYTES = std::vector<BYTE>;
using BYTE_VIEW = std::span<const BYTE>;

/// Offsets and lengths of areas count units of this many bytes (FRU Information Storage Definition, section 8).
constexpr std::size_t UNIT = 8;
/// Bytes of the common header.
constexpr std::size_t HEADER_SIZE = 8;
/// Bytes of the header of a multi-record (section 16).
constexpr std::size_t RECORD_HEADER_SIZE = 5;
/// Most bytes of one field, of one record's data, and of one info area.
constexpr std::size_t MAXIMUM_FIELD = 63;
constexpr std::size_t MAXIMUM_RECORD_DATA = 255;
constexpr std::size_t MAXIMUM_INFO_AREA = 255 * UNIT;
/// The highest offset that the common header can name.
constexpr std::size_t MAXIMUM_OFFSET = 255 * UNIT;
/// Most bytes that a device can have: FRU inventory commands address 16 bits (IPMI 2.0, section 34).
constexpr std::size_t MAXIMUM_DEVICE = 65535;

/// Some bytes of an image.
struct RANGE {
    std::size_t offset = 0;
    std::size_t length = 0;

    std::size_t End() const { return offset + length; }
    bool Overlaps(const RANGE& other) const { return offset < other.End() && other.offset < End(); }
    bool operator==(const RANGE&) const = default;
};

/// The byte that makes `bytes` and itself sum to 0 modulo 256.
BYTE ZeroChecksum(BYTE_VIEW bytes);
/// `size` rounded up to whole units.
constexpr std::size_t RoundUp(std::size_t size) {
    return (size + UNIT - 1) / UNIT * UNIT;
}
/// The bytes from `offset` on, at most `length`; never past the end.
BYTE_VIEW Slice(BYTE_VIEW bytes, std::size_t offset, std::size_t length);
/// Replaces the bytes of `image` from `offset` on, which grows where they reach past its end. No bytes change
/// nothing, wherever they belong.
void Copy(BYTES& image, std::size_t offset, BYTE_VIEW bytes);
/// Whether all of `bytes` are `value`; true for none.
bool IsFilledWith(BYTE_VIEW bytes, BYTE value);
/// Upper-case hexadecimal pairs, `separator` between them.
std::string Hex(BYTE_VIEW bytes, const char* separator = " ");

} // namespace FruImage
