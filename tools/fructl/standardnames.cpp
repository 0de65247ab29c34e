#include "tools/fructl/standardnames.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

namespace Fructl {

namespace {

constexpr std::pair<UINT8, std::string_view> COMPLETION_CODES[] = {{0x80, "write protected or not possible now"},
                                                                   {0x81, "FRU device busy"},
                                                                   {0x82, "bus error"},
                                                                   {0x83, "no acknowledgement from the device"},
                                                                   {0xC0, "node busy"},
                                                                   {0xC1, "command not supported"},
                                                                   {0xC3, "time-out"},
                                                                   {0xC4, "out of space"},
                                                                   {0xC7, "wrong request length"},
                                                                   {0xC8, "request too long"},
                                                                   {0xC9, "offset out of range"},
                                                                   {0xCA, "cannot return that many bytes"},
                                                                   {0xCB, "no such device"},
                                                                   {0xCC, "invalid request"},
                                                                   {0xD3, "destination not there"},
                                                                   {0xD4, "not permitted"},
                                                                   {0xD5, "not possible in the present state"},
                                                                   {0xFF, "unspecified error"}};

} // namespace

std::string CompletionCodeText(UINT8 code) {
    for (const auto& [known, text] : COMPLETION_CODES)
        if (known == code)
            return fmt::format("{} (completion code {:02X}h)", text, code);
    return fmt::format("completion code {:02X}h", code);
}

} // namespace Fructl
