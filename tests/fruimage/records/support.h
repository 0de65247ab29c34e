#pragma once

#include "fruimage/records/records.h"

#include <gtest/gtest.h>

using BYTES = std::vector<std::uint8_t>;

/// The bytes of "EE 02 ...".
inline BYTES FromHex(const char* text) {
    BYTES bytes;
    char* end = nullptr;
    for (auto byte = std::strtoul(text, &end, 16); end != text; byte = std::strtoul(text, &end, 16)) {
        bytes.push_back(static_cast<std::uint8_t>(byte));
        text = end;
    }
    return bytes;
}
