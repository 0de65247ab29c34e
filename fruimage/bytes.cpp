#include "fruimage/bytes.h"

#include <algorithm>
#include <numeric>

namespace FruImage {

BYTE ZeroChecksum(BYTE_VIEW bytes) {
    return static_cast<BYTE>(0U - std::accumulate(bytes.begin(), bytes.end(), 0U));
}

BYTE_VIEW Slice(BYTE_VIEW bytes, std::size_t offset, std::size_t length) {
    if (offset >= bytes.size())
        return {};
    return bytes.subspan(offset, std::min(length, bytes.size() - offset));
}

void Copy(BYTES& image, std::size_t offset, BYTE_VIEW bytes) {
    if (bytes.empty())
        return;
    image.resize(std::max(image.size(), offset + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(offset));
}

bool IsFilledWith(BYTE_VIEW bytes, BYTE value) {
    return std::all_of(bytes.begin(), bytes.end(), [=](BYTE byte) { return byte == value; });
}

std::string Hex(BYTE_VIEW bytes, const char* separator) {
    constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string text;
    for (const BYTE byte : bytes) {
        if (!text.empty())
            text += separator;
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 0x0F];
    }
    return text;
}

} // namespace FruImage
