#include "drivers/lan/host.h"

#include "drivers/lan/lan.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <arpa/inet.h>

namespace Frudata_Driver {

namespace {

/// What stands in front of the port, and what behind its colon.
struct PARTS {
    std::string_view name;
    std::optional<std::string_view> port;
};

/// A text with more than one colon outside brackets is an IPv6 address without a port.
std::optional<PARTS> Split(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (!text.starts_with('[')) {
        if (colon == std::string_view::npos || text.find(':', colon + 1) != std::string_view::npos)
            return PARTS{text, {}};
        return PARTS{text.substr(0, colon), text.substr(colon + 1)};
    }
    const std::size_t bracket = text.find(']');
    if (bracket == std::string_view::npos)
        return std::nullopt;
    const std::string_view name = text.substr(1, bracket - 1);
    const std::string_view behind = text.substr(bracket + 1);
    if (behind.empty())
        return PARTS{name, {}};
    if (behind.front() != ':')
        return std::nullopt;
    return PARTS{name, behind.substr(1)};
}

/// What is wrong with a host's name, or nothing.
std::string NameProblem(std::string_view name) {
    if (name.empty())
        return "the host's name is missing";
    if (name.size() > LARGEST_HOST_SIZE)
        return "the host's name has " + std::to_string(name.size()) + " bytes, at most " +
               std::to_string(LARGEST_HOST_SIZE) + " are possible";
    const auto isWrong = [](char c) { return (c >= '\0' && c <= ' ') || c == '\x7F' || c == '[' || c == ']'; };
    if (std::any_of(name.begin(), name.end(), isWrong))
        return "a host's name has no blank, control character or bracket";
    // Without its zone, which is a name of this machine's interfaces (RFC 4007, section 11).
    const std::string address(name.substr(0, name.find('%')));
    in6_addr ignored{};
    if (name.find(':') != std::string_view::npos && inet_pton(AF_INET6, address.c_str(), &ignored) != 1)
        return "it has colons and is no IPv6 address";
    return {};
}

std::optional<UINT16> ParsePort(std::string_view text) {
    UINT16 port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

} // namespace

std::string WithPort(const std::string& host, UINT16 port) {
    const bool bare = host.find(':') == std::string::npos;
    return (bare ? host : "[" + host + "]") + ":" + std::to_string(port ? port : LAN_DEFAULT_PORT);
}

std::optional<NETWORK_HOST> ParseHost(std::string_view text, std::string& message) {
    const auto parts = Split(text);
    if (!parts) {
        message = "with brackets it is [ADDRESS] or [ADDRESS]:PORT";
        return std::nullopt;
    }
    message = NameProblem(parts->name);
    if (!message.empty())
        return std::nullopt;
    const auto port = parts->port ? ParsePort(*parts->port) : UINT16{0};
    if (!port) {
        message = "the port is a number from 1 to " + std::to_string(std::numeric_limits<UINT16>::max());
        return std::nullopt;
    }
    return NETWORK_HOST{std::string(parts->name), *port};
}

} // namespace Frudata_Driver
