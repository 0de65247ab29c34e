// A host on the network, and its port, as a text: NAME:PORT.
#pragma once

#include "frudata/types.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Frudata_Driver {

/// Bytes of the longest host name (RFC 1035, section 2.3.4, without the length bytes); an address is shorter.
constexpr std::size_t LARGEST_HOST_SIZE = 253;

struct NETWORK_HOST {
    std::string name; ///< or address; IPv6 without brackets
    UINT16 port;      ///< 0 where the text has none
};

/// `host` with `port` (0: LAN_DEFAULT_PORT), an IPv6 address in brackets: the form for people and for libfreeipmi.
std::string WithPort(const std::string& host, UINT16 port);
/// NAME, NAME:PORT, an IPv6 address, or that as [ADDRESS] or [ADDRESS]:PORT. @param message what is wrong with the text
/// @return nothing for a text that is none of these
std::optional<NETWORK_HOST> ParseHost(std::string_view text, std::string& message);

} // namespace Frudata_Driver
