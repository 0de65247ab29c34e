// Sentences for people, from texts and numbers.
#pragma once

#include "fruimage/bytes.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <type_traits>

namespace FruImage {

inline void AppendPart(std::string& text, std::string_view part) {
    text += part;
}
template <class NUMBER>
requires std::is_integral_v<NUMBER>
void AppendPart(std::string& text, NUMBER part) {
    text += std::to_string(part);
}
/// The parts joined; numbers in decimal.
template <class... PARTS> std::string Text(const PARTS&... parts) {
    std::string text;
    (AppendPart(text, parts), ...);
    return text;
}

/// "5Ah"
inline std::string ByteText(BYTE byte) {
    return Hex({&byte, 1}) + "h";
}
/// "0C8h", "1000h": three digits or more.
inline std::string PlaceText(std::size_t offset) {
    const BYTE bytes[] = {static_cast<BYTE>(offset >> 16), static_cast<BYTE>(offset >> 8), static_cast<BYTE>(offset)};
    const std::string text = Hex(bytes, "");
    return text.substr(std::min(text.find_first_not_of('0'), text.size() - 3)) + "h";
}
/// "1 byte", "2 bytes"
inline std::string Count(std::size_t number, std::string_view what) {
    return Text(number, " ", what, number == 1 ? "" : "s");
}

} // namespace FruImage
